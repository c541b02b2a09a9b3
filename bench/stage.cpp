#include "bench/stage.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace vell::bench {

Command vell(const Command& arguments) {
  Command command{VELL_EXECUTABLE};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

std::string program(const std::string& name) { return std::string(VELL_BENCH_PROGRAMS) + "/" + name; }

Command sdkServer(const std::string& socket) {
  return {"node", "--no-warnings", VELL_BENCH_SDK_SERVER, VELL_MCP_SDK, socket};
}

// $TMPDIR may be too long for a home's socket.
Stage::Stage() : directory_("/tmp/vell-bench-XXXXXX") {
  if (mkdtemp(directory_.data()) == nullptr) throw std::runtime_error("cannot make " + directory_);
  enter();
  std::filesystem::create_directories(std::filesystem::path(socket()).parent_path());
}

void Stage::enter() const { setenv("HOME", directory_.c_str(), 1); }

Stage::~Stage() { std::filesystem::remove_all(directory_); }

std::string Stage::socket() const { return path("Library/Containers/app.vell.Vell/Data/cli.sock"); }

std::string Stage::install(const std::string& program) const {
  const std::filesystem::path source = program;
  std::filesystem::copy_file(source, path(source.filename()));
  return path(source.filename());
}

Background Stage::application(const std::string& answerFile) const {
  unlink(socket().c_str());
  Background application({program("canned_application"), socket(), answerFile});
  while (access(socket().c_str(), F_OK) != 0) usleep(1000);
  return application;
}

}  // namespace vell::bench

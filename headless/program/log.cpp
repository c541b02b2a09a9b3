#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "headless/editing/problem.h"
#include "headless/program/program.h"
#include "headless/storage/files.h"
#include "platform/container.h"
#include "platform/descriptor.h"

namespace vell::headless {
namespace {

constexpr std::chrono::milliseconds pace{200};

platform::Descriptor openFile(const std::string& path) {
  return platform::Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

/// Prints what was not read yet.
void printRest(const platform::Descriptor& file) {
  char part[1 << 16];
  for (ssize_t count = 0; file && (count = read(file.get(), part, sizeof part)) > 0;)
    if (!platform::writeAll(STDOUT_FILENO, {part, static_cast<std::size_t>(count)}))
      throw systemProblem("Cannot write to standard output");
}

}  // namespace

int showLog(bool follow) {
  const std::string path = platform::containerDirectory() + "/vell.log";
  platform::Descriptor file = openFile(path);
  if (!file && !follow) warn("nothing was logged yet in " + path);
  printRest(file);
  while (follow && !platform::readerIsGone(STDOUT_FILENO)) {
    std::this_thread::sleep_for(pace);
    printRest(file);
    // A log that has grown long is put aside, and another one begins.
    if (file && stampOf(path).file == stampOf(file.get()).file) continue;
    file = openFile(path);
  }
  return 0;
}

}  // namespace vell::headless

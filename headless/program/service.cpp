#include "platform/service.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "headless/editing/problem.h"
#include "headless/program/program.h"
#include "headless/storage/files.h"
#include "headless/storage/paths.h"
#include "platform/process.h"

namespace vell::headless {
namespace {

using platform::Command;

/// As shells take it for one word.
std::string quoted(const std::string& word) {
  const bool plain = std::all_of(word.begin(), word.end(), [](unsigned char c) {
    return std::isalnum(c) != 0 ||
           std::string_view("-_./=:@%+,").find(static_cast<char>(c)) != std::string_view::npos;
  });
  if (plain && !word.empty()) return word;
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
  return text + "'";
}

std::string shown(const Command& command) {
  std::string text;
  for (const std::string& word : command) {
    text.append(text.empty() ? "" : " ").append(quoted(word));
  }
  return text;
}

void print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);  // before what the commands print
}

/// Says what came of it. False where a command is missing or failed: those behind it are not run then.
bool runAll(const std::vector<Command>& commands) {
  for (const Command& command : commands) {
    const auto status = platform::runProgram(command);
    if (status == 0) {
      print("Ran " + shown(command));
      continue;
    }
    print(status ? "Failed: " + shown(command) : "There is no " + command.front() + " here: nothing was run");
    return false;
  }
  return true;
}

platform::ServiceSetup setupFor(const std::vector<std::string>& paths) {
  const auto program = platform::executablePath();
  if (!program) throw Problem("Cannot tell where vell-headless is");
  platform::Service service{"Vell without a desktop: serves outline files to vell", {*program}};
  service.command.insert(service.command.end(), paths.begin(), paths.end());
  return platform::serviceSetup(service);
}

bool isInstalled(const platform::ServiceSetup& setup) { return stampOf(setup.file) != FileStamp(); }

std::string startCommands(const platform::ServiceSetup& setup, bool again) {
  return (again && setup.endFormer ? shown(*setup.endFormer) + "; " : "") + shown(setup.start);
}

}  // namespace

int installService(const std::vector<std::string>& paths) {
  const platform::ServiceSetup setup = setupFor(existingPaths(paths));
  const std::string start = startCommands(setup, isInstalled(setup));
  makeDirectories(folderOf(setup.file));
  replaceFile(setup.file, {setup.text});
  print("Wrote " + setup.file);
  if (runAll(setup.afterWriting)) {
    print("It starts with your next login. Start it now: " + start);
    return 0;
  }
  std::string missing;
  for (const Command& command : setup.afterWriting) missing += shown(command) + " && ";
  print("Where the service manager runs for you, run: " + missing + start);
  return 1;
}

int removeService() {
  const platform::ServiceSetup setup = setupFor({});
  if (!isInstalled(setup)) {
    warn("no service is installed (there is no " + setup.file + ")");
    return 0;
  }
  runAll(setup.beforeRemoving);
  removeFile(setup.file);
  print("Removed " + setup.file);
  runAll(setup.afterRemoving);
  return 0;
}

int showService() {
  const platform::ServiceSetup setup = setupFor({});
  if (!isInstalled(setup)) {
    warn("no service is installed. Install one with: vell-headless service install ~/notes");
    return notRunningStatus;
  }
  print("Installed as " + setup.file);
  const auto status = platform::runProgram(setup.status);
  if (status) return *status;
  print("There is no " + setup.status.front() + " here that could tell more; see vell-headless status");
  return 0;
}

}  // namespace vell::headless

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "headless/editing/problem.h"

namespace vell::headless {

// What `vell-headless` does for the person who starts it, a function a command. Each prints, and returns the
// exit status; what cannot be done is thrown as Problem.

struct ServeOptions {
  std::vector<std::string> paths;  ///< files and folders
  bool fresh = false;              ///< what was open when the last run ended stays closed
  std::string version;
};

/// Serves the files and folders, and what clients open, until a signal asks to quit. Where another
/// application serves already, has that open them.
int serve(const ServeOptions& options);

/// As systemctl has it: what `status` says of a program that does not run.
constexpr int notRunningStatus = 3;

/// Tells what is served and what is amiss; `json` as one line of JSON.
int showStatus(bool json);
/// Asks the application to end and waits until what it holds is on disk, for at most `limit`.
int stop(std::chrono::seconds limit);

/// Prints the log; with `follow` what comes to it, too, until the reader of standard output is gone.
int showLog(bool follow);

/// Has the system run `vell-headless` with those files and folders from login on.
int installService(const std::vector<std::string>& paths);
int removeService();
int showService();

/// A file or folder that somebody named is not there.
class NoSuchPath : public Problem {
 public:
  NoSuchPath(const std::string& path, std::string asTyped)
      : Problem("No such file or folder: " + path), typed(std::move(asTyped)) {}
  const std::string typed;
};

/// Standardised paths. Throws NoSuchPath where one of them leads to nothing.
std::vector<std::string> existingPaths(const std::vector<std::string>& paths);

/// A line on standard error.
void warn(const std::string& message);

}  // namespace vell::headless

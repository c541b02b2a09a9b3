#pragma once

#include <string>
#include <vector>

#include "headless/storage/application.h"

namespace vell::headless {

/// Remembers in the container what is open, so that the next run opens it again: the served folders, the
/// files that are not below them, and which outline is in front. Writes that down at most once a second, so a
/// run that is killed loses no more.
class Session {
 public:
  /// The references must outlive the session.
  Session(Scheduler& scheduler, Application& application);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Opens behind what is open already what was open when the last run ended, the untitled outlines as well.
  /// What is not there any more is told in the log.
  void reopen();
  /// Writes down what is open now; from now on as things change.
  void keep();

 private:
  void open(const std::vector<std::string>& paths, bool folders);

  Scheduler& scheduler_;
  Application& application_;
  std::string path_;
  std::string kept_;   ///< what the file holds
  std::string fault_;  ///< why it could not be written, as told
  std::optional<Scheduler::Timer> timer_;
};

}  // namespace vell::headless

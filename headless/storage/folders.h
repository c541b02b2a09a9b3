#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "headless/storage/folder_scan.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/scheduler.h"
#include "platform/thread.h"

namespace vell::headless {

/// An outline file below a served folder, read.
struct FoundFile {
  std::string path;
  std::unique_ptr<OpenOutline> outline;  ///< null where it could not be read
  std::string fault;                     ///< why
};

/// The folders that are served. Looks about once a second for files that are new in them and reads those, on
/// a thread of its own that begins with the first folder.
class Folders {
 public:
  /// Called on the application's thread.
  struct Events {
    std::function<void(std::vector<FoundFile>)> found;
    /// A line for people: why a folder cannot be looked at.
    std::function<void(const std::string&)> fault;
  };

  Folders(Scheduler& scheduler, Events events) : mailbox_(scheduler), events_(std::move(events)) {}
  ~Folders();
  Folders(const Folders&) = delete;
  Folders& operator=(const Folders&) = delete;

  /// Returns the files that are there now and not known from another folder; later ones come as events.
  /// Throws Problem where there is no such folder, or it holds too much, and Abandoned; the folder is not
  /// served then.
  std::vector<FoundFile> add(const std::string& folder);

  std::vector<std::string> paths() const;
  /// Whether one of the folders is above that path.
  bool cover(const std::string& path) const;
  /// Whether the file was found below a folder when that was last looked at.
  bool hold(const std::string& path) const;
  /// Takes the file for new if it is found again.
  void forget(const std::string& path);
  /// The files found that could not be read, and why. Each is tried again when it has changed.
  std::map<std::string, std::string> unreadable() const;

 private:
  struct Unreadable {
    FileStamp stamp;
    std::string fault;
  };

  void remove(const std::string& folder);
  void work();
  FoundFile read(const std::string& path);
  bool takeForgotten();
  bool lookAt(FolderScan& scan);
  std::vector<std::string> newFiles();
  void readNew(const std::vector<std::string>& paths);
  void post(std::vector<FoundFile> files);
  void post(const std::string& fault);

  const Mailbox mailbox_;
  Events events_;
  std::mutex scanning_;  ///< for `scans_`
  std::vector<FolderScan> scans_;
  std::set<std::string> faulty_;  ///< folders whose fault was told; of the thread alone
  mutable std::mutex mutex_;      ///< for what follows
  std::vector<std::string> paths_;
  std::set<std::string> known_;
  std::map<std::string, Unreadable> unreadable_;
  bool forgotten_ = false;  ///< a file was, since the last look
  bool ending_ = false;
  std::condition_variable ended_;
  std::optional<platform::Thread> thread_;
};

}  // namespace vell::headless

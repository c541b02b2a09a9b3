#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "headless/storage/files.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// A file to be replaced, if it still looks as expected.
struct SaveJob {
  std::string path;
  /// Makes the bytes, on the writer's thread.
  std::function<std::string()> encode;
  FileStamp expected;
  /// Where the bytes are kept if they cannot be written there.
  std::string spare;
};

struct SaveResult {
  /// `conflict`: the file is not as expected and was left alone. `failed`, and `unencoded` where there are no
  /// bytes to write: `fault` says why.
  enum class Kind { saved, conflict, failed, unencoded };
  Kind kind;
  FileStamp stamp;
  std::string fault;
  bool anew = false;            ///< `saved`: the expected file was gone
  std::size_t contentHash = 0;  ///< `saved`: of the bytes
};

/// The sentence that tells people where the bytes are that could not be saved.
std::string unsavedIn(const std::string& spare);

/// Writes files on a thread of its own, one after another. The destructor finishes what is queued.
class DiskWriter {
 public:
  using Done = std::function<void(const SaveResult&)>;

  explicit DiskWriter(Scheduler& scheduler);
  ~DiskWriter();

  /// `done` is called on the application's thread.
  void write(SaveJob job, Done done);
  /// Returns once every job is done and its `done` has been called.
  void drain();

 private:
  struct Entry {
    SaveJob job;
    Done done;
    SaveResult result{};
  };

  void work();
  void runDone();

  Scheduler& scheduler_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Entry> queued_;
  std::deque<Entry> finished_;
  bool busy_ = false;
  bool ending_ = false;
  std::shared_ptr<DiskWriter*> self_;  // empty once destroyed, for tasks posted before
  std::thread thread_;
};

}  // namespace vell::headless

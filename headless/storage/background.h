#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "headless/storage/scheduler.h"
#include "platform/thread.h"

namespace vell::headless {

/// Reads and writes files beside the application, a few at a time. The destructor finishes what was asked
/// for.
class Background {
 public:
  using Task = std::function<void()>;

  explicit Background(Scheduler& scheduler) : mailbox_(scheduler) {}
  ~Background();
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  /// Runs `work`, which must not throw, on another thread, destroys it there, and then calls `done` on the
  /// application's, if there is one. Throws std::system_error where the system has no thread left.
  void run(Task work, Task done);
  /// Returns once all is done and every `done` has been called, what they asked for included. The
  /// application's thread must not hold the application.
  void drain();

 private:
  struct Entry {
    Task work;
    Task done;
  };

  void serve();
  bool runDone();

  static constexpr std::size_t mostThreads = 4;

  const Mailbox mailbox_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Entry> queued_;
  std::deque<Task> finished_;
  std::size_t busy_ = 0;
  bool ending_ = false;
  std::vector<std::unique_ptr<platform::Thread>> threads_;
};

}  // namespace vell::headless

#pragma once

#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Time passes when the test says so.
class ManualScheduler : public Scheduler {
 public:
  Timer after(Clock::duration, Task task) override {
    timers_.emplace(next_, std::move(task));
    return next_++;
  }
  void cancel(Timer timer) override { timers_.erase(timer); }
  void post(Task task) override {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }

  std::size_t waiting() const { return timers_.size(); }
  void runTimers() {
    auto due = std::exchange(timers_, {});
    for (auto& [timer, task] : due) task();
  }
  /// Waits for something to be posted and runs it.
  void runPosted() {
    for (bool ran = false; !ran; std::this_thread::yield()) {
      std::vector<Task> tasks;
      {
        const std::lock_guard lock(mutex_);
        tasks.swap(posted_);
      }
      for (const Task& task : tasks) task();
      ran = !tasks.empty();
    }
  }

 private:
  std::map<Timer, Task> timers_;
  Timer next_ = 0;
  std::mutex mutex_;
  std::vector<Task> posted_;
};

}  // namespace vell::headless

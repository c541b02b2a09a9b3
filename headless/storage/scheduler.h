#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace vell::headless {

/// Runs things later on the application's thread.
class Scheduler {
 public:
  using Clock = std::chrono::steady_clock;
  using Task = std::function<void()>;
  using Timer = std::uint64_t;

  virtual ~Scheduler() = default;
  /// Runs `task` once, not before `delay` has passed; never from within this call.
  virtual Timer after(Clock::duration delay, Task task) = 0;
  virtual void cancel(Timer timer) = 0;
  /// Runs `task` as soon as possible. Other threads may call this, and nothing else.
  virtual void post(Task task) = 0;
};

/// Posts the tasks of an object that lives on the application's thread. Those that have not run when the
/// object goes, and its mailbox with it, never run.
class Mailbox {
 public:
  explicit Mailbox(Scheduler& scheduler) : scheduler_(scheduler) {}

  /// Other threads may call this.
  void post(Scheduler::Task task) const {
    scheduler_.post([owner = std::weak_ptr(owner_), task = std::move(task)] {
      if (!owner.expired()) task();
    });
  }

 private:
  struct Owner {};

  Scheduler& scheduler_;
  const std::shared_ptr<const Owner> owner_ = std::make_shared<Owner>();
};

}  // namespace vell::headless

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

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

}  // namespace vell::headless

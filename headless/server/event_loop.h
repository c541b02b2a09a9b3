#pragma once

#include <poll.h>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <unordered_map>

#include "headless/access.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Waits for descriptors and timers; everything it calls runs on the thread that runs the loop, which holds
/// the application meanwhile. Other threads that hold it may watch, forget and set timers, too. What is only
/// watched costs nothing, however much of it there is.
class EventLoop : public Scheduler {
 public:
  /// Gets POLLIN or POLLOUT. It may watch and forget descriptors and set timers, its own included.
  using Ready = std::function<void(short)>;

  ApplicationAccess& access() { return access_; }

  /// Calls `ready` whenever `descriptor`, which stays the caller's, can be read (POLLIN) or written
  /// (POLLOUT), or is at its end or broken, as far as `interest` names it.
  void watch(int descriptor, short interest, Ready ready);
  void setInterest(int descriptor, short interest);
  void forget(int descriptor);

  Timer after(Clock::duration delay, Task task) override;
  void cancel(Timer timer) override;
  void post(Task task) override;

  /// Runs until `stop`.
  void run();
  /// Waits for at most `limit`, then runs what is due.
  void runOnce(Clock::duration limit);
  void stop() { context_.stop(); }

 private:
  struct Watch {
    Watch(asio::io_context& context, int watched, Ready toCall)
        : descriptor(context, watched), ready(std::move(toCall)) {}
    ~Watch() { descriptor.release(); }

    asio::posix::stream_descriptor descriptor;
    const Ready ready;
    short interest = 0;
    short awaited = 0;  ///< what the context has been asked for
  };

  void await(const std::shared_ptr<Watch>& watch);
  void call(const std::shared_ptr<Watch>& watch, short event);

  ApplicationAccess access_;
  asio::io_context context_{1};
  asio::executor_work_guard<asio::io_context::executor_type> working_{context_.get_executor()};
  std::unordered_map<int, std::shared_ptr<Watch>> watches_;
  std::unordered_map<Timer, asio::steady_timer> timers_;
  Timer nextTimer_ = 0;
};

}  // namespace vell::headless

#pragma once

#include <poll.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "headless/access.h"
#include "headless/storage/scheduler.h"
#include "platform/descriptor.h"

namespace vell::headless {

/// Waits for descriptors and timers; everything it calls runs on the thread that runs the loop, which holds
/// the application meanwhile. Other threads that hold it may watch, forget and set timers, too.
class EventLoop : public Scheduler {
 public:
  /// Gets poll's `revents`. It may watch and forget descriptors and set timers, its own included.
  using Ready = std::function<void(short)>;

  EventLoop();

  ApplicationAccess& access() { return access_; }

  /// Calls `ready` whenever poll reports `interest` (or an error) on `descriptor`, which stays the caller's.
  void watch(int descriptor, short interest, Ready ready);
  void setInterest(int descriptor, short interest);
  void forget(int descriptor);

  Timer after(Clock::duration delay, Task task) override;
  void cancel(const Timer& timer) override;
  void post(Task task) override;

  /// Runs until `stop`.
  void run();
  /// Waits for at most `limit`, then runs what is due.
  void runOnce(Clock::duration limit);
  void stop() { stopped_ = true; }

 private:
  struct Watch {
    short interest;
    std::shared_ptr<Ready> ready;
  };

  void wake();
  void wakeForOthers();
  int waitMilliseconds(Clock::duration limit) const;
  void runDueTasks();
  void runPosted();
  void dispatch(const std::vector<pollfd>& polled);

  ApplicationAccess access_;
  std::unordered_map<int, Watch> watches_;
  std::map<Timer, Task> timers_;
  std::uint64_t nextTimer_ = 0;
  bool stopped_ = false;
  std::mutex postedMutex_;
  std::vector<Task> posted_;
  platform::Descriptor wakeRead_;
  platform::Descriptor wakeWrite_;
};

}  // namespace vell::headless

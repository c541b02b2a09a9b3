#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "headless/access.h"
#include "headless/server/event_loop.h"
#include "platform/thread.h"

namespace vell::headless {

/// Runs what may take long: each job on a thread of its own, which holds the application except where it sets
/// it aside. For use by the loop's thread.
class Workers {
 public:
  using Id = std::uint64_t;

  explicit Workers(EventLoop& loop) : loop_(loop), mailbox_(loop) {}
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  /// `work` may throw Abandoned and nothing else. Behind it `done` runs on the loop. Throws std::system_error
  /// where the system has no thread left.
  Id start(std::function<void()> work, std::function<void()> done);
  /// The job ends at its next look at `throwIfAbandoned`; its `done` still runs.
  void giveUp(Id id);
  /// Gives up every job and returns once they have ended; no `done` runs. The caller must not be running in
  /// the loop, whose callbacks hold the application.
  void endAll();

 private:
  struct Job {
    Job(Id number, std::function<void()> toDo, std::function<void()> behind)
        : id(number), work(std::move(toDo)), done(std::move(behind)) {}

    const Id id;
    const std::function<void()> work;
    const std::function<void()> done;
    std::atomic<bool> abandoned = false;
    std::optional<platform::Thread> thread{};
  };

  void run(const Job& job);
  void finish(Id id);

  EventLoop& loop_;
  const Mailbox mailbox_;
  Id next_ = 1;
  std::map<Id, std::unique_ptr<Job>> jobs_;
};

}  // namespace vell::headless

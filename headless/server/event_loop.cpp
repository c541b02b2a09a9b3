#include "headless/server/event_loop.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

namespace vell::headless {

EventLoop::EventLoop() {
  int ends[2];
  if (pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  wakeRead_ = platform::Descriptor(ends[0]);
  wakeWrite_ = platform::Descriptor(ends[1]);
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  watch(wakeRead_.get(), POLLIN, [this](short) { runPosted(); });
}

void EventLoop::watch(int descriptor, short interest, Ready ready) {
  watches_[descriptor] = {interest, std::make_shared<Ready>(std::move(ready))};
  wakeForOthers();
}

void EventLoop::setInterest(int descriptor, short interest) {
  const auto found = watches_.find(descriptor);
  if (found == watches_.end() || found->second.interest == interest) return;
  found->second.interest = interest;
  wakeForOthers();
}

void EventLoop::forget(int descriptor) { watches_.erase(descriptor); }

EventLoop::Timer EventLoop::after(Clock::duration delay, Task task) {
  const Timer timer{Clock::now() + delay, nextTimer_++};
  timers_.emplace(timer, std::move(task));
  wakeForOthers();
  return timer;
}

void EventLoop::cancel(const Timer& timer) { timers_.erase(timer); }

void EventLoop::post(Task task) {
  {
    const std::lock_guard lock(postedMutex_);
    posted_.push_back(std::move(task));
  }
  wake();
}

void EventLoop::wake() {
  // If the pipe is full, the loop wakes anyway.
  const ssize_t written = write(wakeWrite_.get(), "", 1);
  static_cast<void>(written);
}

/// Another thread changed what the loop waits for.
void EventLoop::wakeForOthers() {
  if (ApplicationHold::current() != nullptr) wake();
}

void EventLoop::runPosted() {
  std::array<char, 256> bytes;
  while (read(wakeRead_.get(), bytes.data(), bytes.size()) > 0) continue;
  std::vector<Task> tasks;
  {
    const std::lock_guard lock(postedMutex_);
    tasks.swap(posted_);
  }
  for (const Task& task : tasks) task();
}

void EventLoop::run() {
  stopped_ = false;
  while (!stopped_) runOnce(std::chrono::hours(1));
}

void EventLoop::runOnce(Clock::duration limit) {
  std::vector<pollfd> polled;
  std::unique_lock held(access_.mutex());
  polled.reserve(watches_.size());
  for (const auto& [descriptor, watch] : watches_) polled.push_back({descriptor, watch.interest, 0});
  const int wait = waitMilliseconds(limit);
  held.unlock();
  const int ready = poll(polled.data(), static_cast<nfds_t>(polled.size()), wait);
  held.lock();
  if (ready < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "poll");
  if (ready > 0) dispatch(polled);
  runDueTasks();
}

int EventLoop::waitMilliseconds(Clock::duration limit) const {
  if (!timers_.empty()) limit = std::min(limit, timers_.begin()->first.first - Clock::now());
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(limit).count();
  return static_cast<int>(std::clamp<std::int64_t>(wait, 0, 3'600'000));
}

void EventLoop::runDueTasks() {
  // Tasks set by these wait for the next round, so that descriptors get their turn.
  const Timer end{Clock::now(), nextTimer_};
  while (!timers_.empty() && timers_.begin()->first < end) {
    auto due = timers_.extract(timers_.begin());
    due.mapped()();
  }
}

void EventLoop::dispatch(const std::vector<pollfd>& polled) {
  for (const pollfd& entry : polled) {
    if (entry.revents == 0) continue;
    const auto found = watches_.find(entry.fd);
    if (found == watches_.end()) continue;
    const auto ready = found->second.ready;  // outlives its own `forget`
    (*ready)(entry.revents);
  }
}

}  // namespace vell::headless

#include "headless/server/event_loop.h"

#include <asio/post.hpp>
#include <mutex>

namespace vell::headless {

void EventLoop::watch(int descriptor, short interest, Ready ready) {
  watches_[descriptor] = std::make_shared<Watch>(context_, descriptor, std::move(ready));
  setInterest(descriptor, interest);
}

void EventLoop::setInterest(int descriptor, short interest) {
  const auto found = watches_.find(descriptor);
  if (found == watches_.end()) return;
  found->second->interest = interest;
  await(found->second);
}

void EventLoop::forget(int descriptor) {
  const auto found = watches_.find(descriptor);
  if (found == watches_.end()) return;
  found->second->interest = 0;
  found->second->descriptor.release();
  watches_.erase(found);
}

/// An event that is no longer of interest when it comes is passed over.
void EventLoop::await(const std::shared_ptr<Watch>& watch) {
  for (const short event : {short{POLLIN}, short{POLLOUT}}) {
    if ((watch->interest & ~watch->awaited & event) == 0) continue;
    watch->awaited = static_cast<short>(watch->awaited | event);
    const auto type =
        event == POLLIN ? asio::posix::descriptor_base::wait_read : asio::posix::descriptor_base::wait_write;
    watch->descriptor.async_wait(type, [this, watch, event](std::error_code cancelled) {
      const std::lock_guard held(access_.mutex());
      watch->awaited = static_cast<short>(watch->awaited & ~event);
      if (!cancelled) call(watch, event);
    });
  }
}

void EventLoop::call(const std::shared_ptr<Watch>& watch, short event) {
  try {
    if ((watch->interest & event) != 0) watch->ready(event);
  } catch (...) {
    await(watch);
    throw;
  }
  await(watch);
}

EventLoop::Timer EventLoop::after(Clock::duration delay, Task task) {
  const Timer id = nextTimer_++;
  auto& timer = timers_.try_emplace(id, context_, delay).first->second;
  timer.async_wait([this, id, task = std::move(task)](std::error_code) {
    const std::lock_guard held(access_.mutex());
    if (timers_.erase(id) != 0) task();
  });
  return id;
}

void EventLoop::cancel(Timer timer) { timers_.erase(timer); }

void EventLoop::post(Task task) {
  asio::post(context_, [this, task = std::move(task)] {
    const std::lock_guard held(access_.mutex());
    task();
    access_.announce();
  });
}

void EventLoop::run() {
  context_.restart();
  context_.run();
}

void EventLoop::runOnce(Clock::duration limit) {
  context_.restart();
  context_.run_one_for(limit);
}

}  // namespace vell::headless

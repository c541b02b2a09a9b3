#include "headless/storage/background.h"

#include <utility>

namespace vell::headless {

Background::~Background() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  threads_.clear();
}

void Background::run(Task work, Task done) {
  const std::lock_guard lock(mutex_);
  if (queued_.size() + busy_ >= threads_.size() && threads_.size() < mostThreads)
    threads_.push_back(std::make_unique<platform::Thread>([this] { serve(); }));
  queued_.push_back({std::move(work), std::move(done)});
  changed_.notify_all();
}

void Background::drain() {
  do {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return queued_.empty() && busy_ == 0; });
  } while (runDone());
}

void Background::serve() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !queued_.empty(); });
    if (queued_.empty()) return;
    Entry entry = std::move(queued_.front());
    queued_.pop_front();
    ++busy_;
    lock.unlock();
    entry.work();
    entry.work = nullptr;  // and what it held
    lock.lock();
    --busy_;
    changed_.notify_all();
    if (!entry.done) continue;
    finished_.push_back(std::move(entry.done));
    mailbox_.post([this] { runDone(); });
  }
}

/// False where nothing was finished.
bool Background::runDone() {
  std::deque<Task> finished;
  {
    const std::lock_guard lock(mutex_);
    finished.swap(finished_);
  }
  for (const Task& done : finished) done();
  return !finished.empty();
}

}  // namespace vell::headless

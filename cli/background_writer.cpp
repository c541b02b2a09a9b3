#include "cli/background_writer.h"

#include "cli/write_all.h"

namespace vell::cli {

BackgroundWriter::BackgroundWriter(int descriptor)
    : descriptor_(descriptor), thread_(&BackgroundWriter::run, this) {}

BackgroundWriter::~BackgroundWriter() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    done_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

char* BackgroundWriter::room() {
  awaitBacklog(parts_.size() - 1);
  std::unique_ptr<Part>& part = parts_[handedOver_ % parts_.size()];
  if (!part) part.reset(new Part);
  return part->bytes;
}

void BackgroundWriter::handOver(std::size_t size) {
  parts_[handedOver_ % parts_.size()]->size = size;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++handedOver_;
  }
  changed_.notify_all();
}

void BackgroundWriter::finish() { awaitBacklog(0); }

void BackgroundWriter::awaitBacklog(std::size_t most) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [&] { return handedOver_ - written_ <= most; });
  if (failure_) std::rethrow_exception(failure_);
}

void BackgroundWriter::run() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [&] { return written_ < handedOver_ || done_; });
    if (written_ == handedOver_) return;
    const Part& part = *parts_[written_ % parts_.size()];
    const bool failed = failure_ != nullptr;
    lock.unlock();
    if (!failed) write(part);
    lock.lock();
    ++written_;
    changed_.notify_all();
  }
}

void BackgroundWriter::write(const Part& part) try {
  writeAll(descriptor_, {part.bytes, part.size});
} catch (...) {
  const std::lock_guard<std::mutex> lock(mutex_);
  failure_ = std::current_exception();
}

}  // namespace vell::cli

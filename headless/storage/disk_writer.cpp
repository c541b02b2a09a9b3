#include "headless/storage/disk_writer.h"

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

/// Tells where the bytes are that could not be saved; nothing where they cannot be kept either.
std::string keep(const SaveJob& job, const std::string& bytes) {
  try {
    replaceFile(job.spare, bytes, 0600);
    return unsavedIn(job.spare);
  } catch (const std::exception&) {
    return {};
  }
}

SaveResult carryOut(SaveJob& job) {
  std::string bytes;
  try {
    bytes = job.encode();
    job.encode = nullptr;  // and what it held
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::unencoded, {}, failure.what()};
  }
  try {
    const auto replaced = replaceExpected(job.path, bytes, job.expected, job.spare);
    if (!replaced) return {SaveResult::Kind::conflict, {}, {}};
    removeFile(job.spare);
    const bool anew = replaced->anew && job.expected != FileStamp();
    return {SaveResult::Kind::saved, replaced->stamp, {}, anew, hashOf(bytes)};
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::failed, {}, failure.what() + keep(job, bytes)};
  }
}

}  // namespace

std::string unsavedIn(const std::string& spare) { return ". What is not saved is in " + spare; }

DiskWriter::DiskWriter(Scheduler& scheduler)
    : scheduler_(scheduler), self_(std::make_shared<DiskWriter*>(this)), thread_([this] { work(); }) {}

DiskWriter::~DiskWriter() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
  *self_ = nullptr;
}

void DiskWriter::write(SaveJob job, Done done) {
  {
    const std::lock_guard lock(mutex_);
    queued_.push_back({std::move(job), std::move(done)});
  }
  changed_.notify_all();
}

void DiskWriter::drain() {
  {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return queued_.empty() && !busy_; });
  }
  runDone();
}

void DiskWriter::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !queued_.empty(); });
    if (queued_.empty()) return;
    Entry entry = std::move(queued_.front());
    queued_.pop_front();
    busy_ = true;
    lock.unlock();
    entry.result = carryOut(entry.job);
    lock.lock();
    busy_ = false;
    finished_.push_back(std::move(entry));
    changed_.notify_all();
    scheduler_.post([self = self_] {
      if (*self != nullptr) (*self)->runDone();
    });
  }
}

void DiskWriter::runDone() {
  std::deque<Entry> finished;
  {
    const std::lock_guard lock(mutex_);
    finished.swap(finished_);
  }
  for (const Entry& entry : finished) entry.done(entry.result);
}

}  // namespace vell::headless

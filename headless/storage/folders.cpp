#include "headless/storage/folders.h"

#include <algorithm>
#include <filesystem>

#include "headless/access.h"

namespace vell::headless {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds usualPace{800};
/// Looking takes no more than this part of the time.
constexpr int pauseFactor = 20;
/// Files that the application takes over at a time.
constexpr std::size_t batch = 20;

void checkFolder(const std::string& folder) {
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return;
  throw Problem("Cannot serve " + folder + ": " + (error ? error.message() : "it is not a folder"));
}

}  // namespace

Folders::~Folders() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  ended_.notify_all();
  thread_.reset();
}

std::vector<FoundFile> Folders::add(const std::string& folder) {
  checkFolder(folder);
  FolderScan scan(folder);
  scan.look();
  std::vector<std::string> paths;
  {
    const std::lock_guard scanning(scanning_);
    const auto same = [&](const FolderScan& each) { return each.folder() == folder; };
    if (std::any_of(scans_.begin(), scans_.end(), same)) return {};
    scans_.push_back(std::move(scan));
    {
      const std::lock_guard lock(mutex_);
      paths_.push_back(folder);
    }
    paths = newFiles();
    if (!thread_) thread_.emplace([this] { work(); });
  }
  std::vector<FoundFile> files;
  files.reserve(paths.size());
  try {
    for (const std::string& path : paths) {
      throwIfAbandoned();
      files.push_back(read(path));
    }
  } catch (const Abandoned&) {
    remove(folder);
    throw;
  }
  return files;
}

void Folders::remove(const std::string& folder) {
  const std::lock_guard scanning(scanning_);
  std::erase_if(scans_, [&](const FolderScan& each) { return each.folder() == folder; });
  {
    const std::lock_guard lock(mutex_);
    std::erase(paths_, folder);
  }
  newFiles();  // are those of the other folders
}

FoundFile Folders::read(const std::string& path) {
  const FileStamp stamp = stampOf(path);
  FoundFile file{path, nullptr, {}};
  try {
    file.outline = OpenOutline::read(path);
  } catch (const Problem& problem) {
    file.fault = problem.what();
  }
  const std::lock_guard lock(mutex_);
  unreadable_.erase(path);
  if (!file.outline) unreadable_[path] = {stamp, file.fault};
  return file;
}

/// To be called with `scanning_` held.
std::vector<std::string> Folders::newFiles() {
  std::set<std::string> now;
  for (const FolderScan& scan : scans_)
    for (std::string& path : scan.files()) now.insert(std::move(path));
  const std::lock_guard lock(mutex_);
  std::vector<std::string> added;
  std::set_difference(now.begin(), now.end(), known_.begin(), known_.end(), std::back_inserter(added));
  known_ = std::move(now);
  std::erase_if(unreadable_, [this](const auto& file) { return !known_.contains(file.first); });
  return added;
}

void Folders::work() {
  Clock::duration pause = usualPace;
  for (;;) {
    {
      std::unique_lock lock(mutex_);
      if (ended_.wait_for(lock, pause, [this] { return ending_; })) return;
    }
    const auto start = Clock::now();
    std::vector<std::string> added;
    {
      const std::lock_guard scanning(scanning_);
      bool changed = takeForgotten();
      for (FolderScan& scan : scans_) changed = lookAt(scan) || changed;
      if (changed) added = newFiles();
    }
    pause = std::max<Clock::duration>(usualPace, pauseFactor * (Clock::now() - start));
    if (!added.empty()) readNew(added);
  }
}

/// Whether a file is to be taken for new: one that was forgotten, or that could not be read and has changed.
bool Folders::takeForgotten() {
  const std::lock_guard lock(mutex_);
  for (const auto& [path, file] : unreadable_) {
    if (stampOf(path) == file.stamp) continue;
    known_.erase(path);
    forgotten_ = true;
  }
  return std::exchange(forgotten_, false);
}

/// Whether something changed there.
bool Folders::lookAt(FolderScan& scan) {
  try {
    const bool changed = scan.look();
    faulty_.erase(scan.folder());
    return changed;
  } catch (const std::exception& failure) {
    if (faulty_.insert(scan.folder()).second) post(failure.what());
    return false;
  }
}

void Folders::readNew(const std::vector<std::string>& paths) {
  std::vector<FoundFile> files;
  for (const std::string& path : paths) {
    files.push_back(read(path));
    if (files.size() < batch && &path != &paths.back()) continue;
    post(std::exchange(files, {}));
    const std::lock_guard lock(mutex_);
    if (ending_) return;
  }
}

void Folders::post(std::vector<FoundFile> files) {
  const auto shared = std::make_shared<std::vector<FoundFile>>(std::move(files));
  mailbox_.post([this, shared] { events_.found(std::move(*shared)); });
}

void Folders::post(const std::string& fault) {
  mailbox_.post([this, fault] { events_.fault(fault); });
}

std::vector<std::string> Folders::paths() const {
  const std::lock_guard lock(mutex_);
  return paths_;
}

bool Folders::cover(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  return std::any_of(paths_.begin(), paths_.end(),
                     [&](const std::string& folder) { return path.starts_with(folder + "/"); });
}

bool Folders::hold(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  return known_.contains(path);
}

std::map<std::string, std::string> Folders::unreadable() const {
  const std::lock_guard lock(mutex_);
  std::map<std::string, std::string> faults;
  for (const auto& [path, file] : unreadable_) faults.emplace(path, file.fault);
  return faults;
}

void Folders::forget(const std::string& path) {
  const std::lock_guard lock(mutex_);
  forgotten_ = known_.erase(path) > 0 || forgotten_;
}

}  // namespace vell::headless

#include "platform/identifier_index.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "platform/descriptor.h"

namespace vell::platform {

// The file is a row of records, the later ones count: identifier, NUL, path, NUL, "device inode birth" or
// nothing, NUL. None of them can hold a NUL. A record without an identifier forgets the path. Records are
// appended; from time to time the file is written anew without those that no longer count.

namespace {

constexpr std::size_t mostGone = 1'000;
constexpr std::size_t mostEntries = 20'000;

[[noreturn]] void fail(const std::string& file) {
  throw std::system_error(errno, std::generic_category(), "cannot write " + file);
}

Descriptor lockFile(const std::string& file) {
  Descriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock || ::flock(lock.get(), LOCK_EX) != 0) fail(file);
  return lock;
}

std::string record(const IdentifierIndex::Entry& entry) {
  std::string text = entry.identifier + '\0' + entry.path + '\0';
  if (entry.file != FileIdentity()) {
    text += std::to_string(entry.file.device) + ' ' + std::to_string(entry.file.inode) + ' ' +
            std::to_string(entry.file.born);
  }
  return text += '\0';
}

/// None for a text that is no identity.
std::optional<FileIdentity> identity(const std::string& text) {
  if (text.empty()) return FileIdentity();
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t born = 0;
  int length = 0;
  const int read =
      std::sscanf(text.c_str(), "%" SCNu64 " %" SCNu64 " %" SCNd64 "%n", &device, &inode, &born, &length);
  if (read != 3 || static_cast<std::size_t>(length) != text.size()) return std::nullopt;
  return FileIdentity{static_cast<dev_t>(device), static_cast<ino_t>(inode), born};
}

std::string restOf(int descriptor) {
  std::string bytes;
  char part[1 << 16];
  for (ssize_t count = 0; (count = ::read(descriptor, part, sizeof part)) > 0;)
    bytes.append(part, static_cast<std::size_t>(count));
  return bytes;
}

bool exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace

IdentifierIndex::IdentifierIndex(const std::string& directory) : file_(directory + "/identifiers") {}

void IdentifierIndex::put(const Entry& entry) { write(entry); }

void IdentifierIndex::forget(const std::string& path) {
  if (atPath(path) != nullptr) write({{}, path, {}});
}

std::vector<std::string> IdentifierIndex::find(const std::string& identifier) {
  catchUp();
  std::vector<std::string> paths;
  const auto found = paths_.find(identifier);
  if (found == paths_.end()) return paths;
  for (const auto& [number, path] : found->second) paths.push_back(path);
  std::reverse(paths.begin(), paths.end());
  return paths;
}

const IdentifierIndex::Entry* IdentifierIndex::atPath(const std::string& path) {
  catchUp();
  const auto found = byPath_.find(path);
  return found != byPath_.end() ? &found->second.entry : nullptr;
}

const IdentifierIndex::Entry* IdentifierIndex::ofFile(const FileIdentity& file) {
  catchUp();
  const auto found = byFile_.find({file.inode, file.born});
  if (found == byFile_.end()) return nullptr;
  const Entry& entry = byPath_.at(found->second).entry;
  return entry.file == file ? &entry : nullptr;
}

void IdentifierIndex::write(const Entry& entry) {
  const Descriptor lock = lockFile(file_ + ".lock");
  catchUp();
  if (damaged_) compact();
  const Descriptor file(::open(file_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  if (!file || !writeAll(file.get(), record(entry))) fail(file_);
  catchUp();
  if (records_ > 2 * compacted_ + 1'000) compact();
}

/// Reads what was written since it was last read.
void IdentifierIndex::catchUp() {
  const Descriptor file(::open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  const auto facts = file ? factsOf(file.get()) : std::nullopt;
  const FileIdentity now = facts ? facts->identity : FileIdentity();
  if (now != read_ || !facts || static_cast<std::size_t>(facts->size) < readBytes_) {
    const std::string path = std::move(file_);
    *this = IdentifierIndex();
    file_ = path;
    read_ = now;
  }
  if (!facts || static_cast<std::size_t>(facts->size) == readBytes_) return;
  if (::lseek(file.get(), static_cast<off_t>(readBytes_), SEEK_SET) >= 0) take(restOf(file.get()));
}

void IdentifierIndex::take(const std::string& records) {
  std::size_t at = 0;
  const auto field = [&]() -> std::optional<std::string> {
    const std::size_t end = records.find('\0', at);
    if (end == std::string::npos) return std::nullopt;
    std::string text = records.substr(at, end - at);
    at = end + 1;
    return text;
  };
  for (std::size_t whole = 0; whole < records.size(); whole = at) {
    auto identifier = field();
    auto path = field();
    const auto file = field();
    const auto identified = file ? identity(*file) : std::nullopt;
    damaged_ = !identified;
    if (damaged_) return;
    readBytes_ += at - whole;
    ++records_;
    apply({std::move(*identifier), std::move(*path), *identified});
  }
}

void IdentifierIndex::apply(Entry entry) {
  remove(entry.path);
  if (entry.identifier.empty()) return;
  const std::uint64_t number = nextNumber_++;
  paths_[entry.identifier].emplace(number, entry.path);
  if (entry.file.born != 0) byFile_[{entry.file.inode, entry.file.born}] = entry.path;
  std::string path = entry.path;
  byPath_.insert_or_assign(std::move(path), Kept{std::move(entry), number});
}

void IdentifierIndex::remove(const std::string& path) {
  const auto found = byPath_.find(path);
  if (found == byPath_.end()) return;
  const auto& [entry, number] = found->second;
  const auto paths = paths_.find(entry.identifier);
  paths->second.erase(number);
  if (paths->second.empty()) paths_.erase(paths);
  const auto file = byFile_.find({entry.file.inode, entry.file.born});
  if (file != byFile_.end() && file->second == path) byFile_.erase(file);
  byPath_.erase(found);
}

std::vector<const IdentifierIndex::Kept*> IdentifierIndex::inOrder() const {
  std::vector<const Kept*> all;
  all.reserve(byPath_.size());
  for (const auto& [path, kept] : byPath_) all.push_back(&kept);
  std::sort(all.begin(), all.end(), [](const Kept* a, const Kept* b) { return a->number < b->number; });
  return all;
}

/// Writes what counts into a new file: every file that is there, and the latest of those that are gone (their
/// volume may come back).
void IdentifierIndex::compact() {
  std::vector<const Kept*> all = inOrder();
  std::size_t gone = 0;
  std::size_t kept = 0;
  std::vector<std::string> records;
  for (auto at = all.rbegin(); at != all.rend() && kept < mostEntries; ++at) {
    if (!exists((*at)->entry.path) && ++gone > mostGone) continue;
    records.push_back(record((*at)->entry));
    ++kept;
  }
  std::string bytes;
  for (auto at = records.rbegin(); at != records.rend(); ++at) bytes += *at;
  const std::string next = file_ + ".new";
  const Descriptor file(::open(next.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (!file || !writeAll(file.get(), bytes) || std::rename(next.c_str(), file_.c_str()) != 0) fail(file_);
  catchUp();
  compacted_ = records_;
}

}  // namespace vell::platform

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "headless/editing/uuid.h"
#include "headless/storage/files.h"
#include "headless/storage/paths.h"
#include "platform/descriptor.h"

namespace vell::headless {
namespace {

void syncFolder(const std::string& folder) {
  const platform::Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor) fsync(descriptor.get());
}

constexpr std::string_view temporaryMark = ".vell-";
constexpr std::size_t temporaryTail = 8;

/// A hidden name beside the target's, with a random tail.
std::string temporaryPath(const std::string& target) {
  const std::string tail = std::string(temporaryMark) + newUuid().substr(0, temporaryTail);
  return folderOf(target) + "/" + fittedName(".", fileName(target), tail);
}

bool isTemporary(std::string_view name) {
  if (name.size() <= temporaryMark.size() + temporaryTail || name.front() != '.') return false;
  const std::string_view tail = name.substr(name.size() - temporaryTail);
  name.remove_suffix(temporaryTail);
  return name.ends_with(temporaryMark) &&
         tail.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

/// A temporary file beside the target, removed unless it replaces the target. It is locked while it is
/// written, so that others can tell it from an abandoned one.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& target, mode_t mode)
      : path_(temporaryPath(target)),
        descriptor_(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {
    if (!descriptor_) {
      path_.clear();
      return;
    }
    flock(descriptor_.get(), LOCK_EX | LOCK_NB);
  }
  ~TemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// False, with errno set, where the folder takes no file.
  explicit operator bool() const { return static_cast<bool>(descriptor_); }
  /// Takes over what belongs to the file that it is to replace. False where it cannot have all of that.
  bool take(const std::string& target, const platform::FileFacts& former) {
    const auto own = platform::factsOf(descriptor_.get());
    const bool owned = own && own->owner == former.owner && own->group == former.group;
    if (!owned && fchown(descriptor_.get(), former.owner, former.group) != 0) return false;
    const platform::Descriptor source(open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return source && platform::copyAttributes(source.get(), descriptor_.get()) &&
           fchmod(descriptor_.get(), former.mode & 07777) == 0;
  }
  void fill(const Pieces& content) {
    constexpr std::size_t stretch = 1 << 23;
    std::size_t written = 0;
    forEachBlock(content, [&](std::string_view block) {
      if (!platform::writeAll(descriptor_.get(), block)) throw systemProblem("write");
      written += block.size();
      if (written < stretch) return;
      platform::beginSyncToDisk(descriptor_.get());
      written = 0;
    });
    if (!platform::syncToDisk(descriptor_.get())) throw systemProblem("fsync");
  }
  FileStamp moveTo(const std::string& target) {
    const FileStamp before = stampOf(descriptor_.get());
    if (rename(path_.c_str(), target.c_str()) != 0) throw systemProblem("rename");
    path_.clear();
    syncFolder(folderOf(target));
    return stampSince(before);
  }
  /// Moves only over what is expected, or over nothing. Looking first and moving then would overwrite what is
  /// written in between: so the files are swapped, and swapped back if the former one is not as expected.
  std::optional<Replaced> moveTo(const std::string& target, const FileStamp& expected) {
    const FileStamp now = stampOf(target);
    if (now == FileStamp()) return Replaced{moveTo(target), true};
    if (now != expected) return std::nullopt;
    const FileStamp before = stampOf(descriptor_.get());
    if (!platform::swapFiles(path_, target)) return Replaced{moveTo(target)};
    if (!stampOf(path_).hasContentOf(expected)) {
      if (!platform::swapFiles(path_, target)) moveTo(target);
      return std::nullopt;
    }
    syncFolder(folderOf(target));
    return Replaced{stampSince(before)};
  }

 private:
  /// Moving the file changes its stamp. If another program has written there since, its stamp is not ours.
  FileStamp stampSince(const FileStamp& before) const {
    const FileStamp now = stampOf(descriptor_.get());
    return now.hasContentOf(before) ? now : before;
  }

  std::string path_;
  platform::Descriptor descriptor_;
};

bool writeAt(int descriptor, std::size_t offset, std::string_view bytes) {
  return lseek(descriptor, static_cast<off_t>(offset), SEEK_SET) >= 0 &&
         platform::writeAll(descriptor, bytes);
}

/// What makes the file longer is written first: if there is no room for it, the former content is whole.
void overwrite(int descriptor, std::string_view bytes, off_t formerSize) {
  const auto former = static_cast<std::size_t>(formerSize);
  if (bytes.size() > former && !writeAt(descriptor, former, bytes.substr(former))) {
    const int reason = errno;
    if (ftruncate(descriptor, formerSize) == 0) errno = reason;
    throw systemProblem("write");
  }
  if (!writeAt(descriptor, 0, bytes.substr(0, former))) throw systemProblem("write");
  if (ftruncate(descriptor, static_cast<off_t>(bytes.size())) != 0) throw systemProblem("truncate");
  if (!platform::syncToDisk(descriptor)) throw systemProblem("fsync");
}

Problem noRoomIn(const std::string& target) {
  return systemProblem("its folder " + folderOf(target) + " takes no new file");
}

FileStamp writeNew(const std::string& target, const Pieces& content, mode_t mode) {
  TemporaryFile temporary(target, mode);
  if (!temporary) throw noRoomIn(target);
  temporary.fill(content);
  return temporary.moveTo(target);
}

void keepSpare(const std::string& spare, const Pieces& content) {
  try {
    writeNew(spare, content, 0600);
  } catch (const Problem& problem) {
    throw Problem("it is to be overwritten, and the copy for the meantime fails: " +
                  std::string(problem.what()));
  }
}

std::optional<Replaced> overwriteExpected(const std::string& target, const Pieces& content,
                                          const FileStamp& expected, const std::string& spare) {
  const platform::Descriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file) throw systemProblem("open");
  if (stampOf(file.get()) != expected) return std::nullopt;
  keepSpare(spare, content);
  std::string bytes;
  for (const std::string_view piece : content) bytes += piece;
  overwrite(file.get(), bytes, expected.size);
  const FileStamp stamp = stampOf(file.get());
  removeFile(spare);
  return Replaced{stamp};
}

std::optional<Replaced> replaceExisting(const std::string& target, const Pieces& content,
                                        const platform::FileFacts& former, const FileStamp& expected,
                                        const std::string& spare) {
  if (access(target.c_str(), W_OK) != 0)
    throw errno == EACCES || errno == EPERM ? Problem("it is write-protected") : systemProblem("open");
  if (former.links > 1) return overwriteExpected(target, content, expected, spare);
  TemporaryFile temporary(target, 0600);
  const bool refused = !temporary && (errno == EACCES || errno == EPERM);
  if (!temporary && !refused) throw noRoomIn(target);
  if (refused || !temporary.take(target, former)) return overwriteExpected(target, content, expected, spare);
  temporary.fill(content);
  return temporary.moveTo(target, expected);
}

template <class Action>
auto saving(const std::string& path, Action action) {
  try {
    return action();
  } catch (const Problem& problem) {
    throw Problem("Cannot save " + path + ": " + problem.what());
  }
}

}  // namespace

FileStamp replaceFile(const std::string& path, const Pieces& content, mode_t newMode) {
  return saving(path, [&] { return writeNew(resolvedPath(path), content, newMode); });
}

std::optional<Replaced> replaceExpected(const std::string& path, const Pieces& content,
                                        const FileStamp& expected, const std::string& spare) {
  return saving(path, [&]() -> std::optional<Replaced> {
    const std::string target = resolvedPath(path);
    if (const auto former = platform::factsOf(target))
      return replaceExisting(target, content, *former, expected, spare);
    return Replaced{writeNew(target, content, usualMode), true};
  });
}

void removeAbandoned(const std::string& folder) {
  std::error_code error;
  for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (!isTemporary(at->path().filename().string())) continue;
    const platform::Descriptor file(open(at->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0) unlink(at->path().c_str());
  }
}

FileStamp createFile(const std::string& path, const Pieces& content) {
  const platform::Descriptor place(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!place && errno == EEXIST) throw Problem("File already exists: " + path);
  if (!place) throw systemProblem("Cannot save " + path);
  try {
    return replaceFile(path, content);
  } catch (...) {
    unlink(path.c_str());
    throw;
  }
}

}  // namespace vell::headless

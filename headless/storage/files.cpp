#include "headless/storage/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>

#include "headless/editing/problem.h"
#include "headless/editing/uuid.h"
#include "headless/storage/paths.h"
#include "platform/descriptor.h"
#include "platform/files.h"

namespace vell::headless {
namespace {

FileStamp stampFrom(const struct stat& status, const std::string& path) {
  std::error_code error;
  return {status.st_dev, status.st_ino, status.st_size, std::filesystem::last_write_time(path, error),
          status.st_mtime};
}

std::string readAll(int descriptor, std::size_t expected, const std::string& path) {
  std::string bytes(expected + 1, '\0');  // one more byte shows the end without growing
  std::size_t size = 0;
  for (;;) {
    if (size == bytes.size()) bytes.resize(bytes.size() * 2);
    const ssize_t count = read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno != EINTR) throw systemProblem("Cannot read " + path);
    if (count == 0) break;
    if (count > 0) size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

void syncDirectory(const std::string& directory) {
  const platform::Descriptor descriptor(open(directory.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor) fsync(descriptor.get());
}

std::string directoryOf(const std::string& path) {
  const std::string directory = std::filesystem::path(path).parent_path().string();
  return directory.empty() ? "." : directory;
}

void makeDirectories(const std::string& path) {
  if (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return;
  if (errno != ENOENT || path == "/") throw systemProblem("Cannot make " + path);
  makeDirectories(directoryOf(path));
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) throw systemProblem("Cannot make " + path);
}

constexpr std::size_t temporaryTail = 8;

/// The first part of a temporary file's name; a random tail follows.
std::string temporaryName(const std::string& target) {
  return "." + fileName(target).substr(0, 200) + ".vell-";
}

/// A temporary file beside the target, removed unless it replaces the target. It is locked while it is
/// written, so that others can tell it from an abandoned one.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& target, mode_t mode)
      : path_(directoryOf(target) + "/" + temporaryName(target) + newUuid().substr(0, temporaryTail)),
        descriptor_(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {
    if (!descriptor_) throw systemProblem("open");
    flock(descriptor_.get(), LOCK_EX | LOCK_NB);
  }
  ~TemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Takes over group and mode of the file that it replaces.
  void take(const struct stat& former) {
    if (fchown(descriptor_.get(), static_cast<uid_t>(-1), former.st_gid) != 0) errno = 0;
    if (fchmod(descriptor_.get(), former.st_mode & 07777) != 0) throw systemProblem("chmod");
  }
  void fill(std::string_view bytes) {
    if (!platform::writeAll(descriptor_.get(), bytes)) throw systemProblem("write");
    if (fsync(descriptor_.get()) != 0) throw systemProblem("fsync");
  }
  /// The stamp is taken before the move: afterwards another program may have written there.
  FileStamp moveTo(const std::string& target) {
    const FileStamp stamp = stampOf(path_);
    if (rename(path_.c_str(), target.c_str()) != 0) throw systemProblem("rename");
    path_.clear();
    syncDirectory(directoryOf(target));
    return stamp;
  }
  /// Moves only over what is expected, or over nothing. Looking first and moving then would overwrite what is
  /// written in between: so the files are swapped, and swapped back if the former one is not as expected.
  std::optional<FileStamp> moveTo(const std::string& target, const FileStamp& expected) {
    const FileStamp stamp = stampOf(path_);
    if (!platform::swapFiles(path_, target)) {
      const FileStamp now = stampOf(target);
      return now == expected || now == FileStamp() ? std::optional(moveTo(target)) : std::nullopt;
    }
    if (stampOf(path_) != expected) {
      if (!platform::swapFiles(path_, target)) moveTo(target);
      return std::nullopt;
    }
    syncDirectory(directoryOf(target));
    return stamp;
  }

 private:
  std::string path_;
  platform::Descriptor descriptor_;
};

std::optional<FileStamp> replace(const std::string& path, std::string_view bytes, mode_t newMode,
                                 const FileStamp* expected) {
  const std::string target = resolvedPath(path);
  try {
    struct stat former {};
    const bool exists = stat(target.c_str(), &former) == 0;
    if (exists && access(target.c_str(), W_OK) != 0) throw Problem("it is write-protected");
    TemporaryFile temporary(target, exists ? 0600 : newMode);
    if (exists) temporary.take(former);
    temporary.fill(bytes);
    return expected != nullptr ? temporary.moveTo(target, *expected) : temporary.moveTo(target);
  } catch (const Problem& problem) {
    throw Problem("Cannot save " + path + ": " + problem.what());
  }
}

}  // namespace

std::size_t hashOf(std::string_view bytes) { return std::hash<std::string_view>()(bytes); }

FileStamp stampOf(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? stampFrom(status, path) : FileStamp();
}

FileContent readFile(const std::string& path) {
  const platform::Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!descriptor) throw systemProblem("Cannot open " + path);
  struct stat status {};
  if (fstat(descriptor.get(), &status) != 0) throw systemProblem("Cannot read " + path);
  if (!S_ISREG(status.st_mode)) throw Problem("Cannot open " + path + ": it is not a regular file");
  const FileStamp stamp = stampFrom(status, path);
  return {readAll(descriptor.get(), static_cast<std::size_t>(status.st_size), path), stamp};
}

FileStamp replaceFile(const std::string& path, std::string_view bytes, mode_t newMode) {
  return *replace(path, bytes, newMode, nullptr);
}

std::optional<FileStamp> replaceExpected(const std::string& path, std::string_view bytes,
                                         const FileStamp& expected) {
  return replace(path, bytes, usualMode, &expected);
}

void removeAbandoned(const std::string& path) {
  const std::string target = resolvedPath(path);
  const std::string start = temporaryName(target);
  std::error_code error;
  for (std::filesystem::directory_iterator at(directoryOf(target), error), end; !error && at != end;
       at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (name.size() != start.size() + temporaryTail || !name.starts_with(start)) continue;
    const platform::Descriptor file(open(at->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0) unlink(at->path().c_str());
  }
}

FileStamp createFile(const std::string& path, std::string_view bytes) {
  const platform::Descriptor place(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!place && errno == EEXIST) throw Problem("File already exists: " + path);
  if (!place) throw systemProblem("Cannot save " + path);
  try {
    return replaceFile(path, bytes);
  } catch (...) {
    unlink(path.c_str());
    throw;
  }
}

void removeFile(const std::string& path) {
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) throw Problem("Cannot remove " + path + ": " + error.message());
}

void makePrivateDirectory(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    makeDirectories(path);
    return;
  }
  if (!S_ISDIR(status.st_mode)) throw Problem("Cannot use " + path + ": it is not a directory");
  if ((status.st_mode & 0077) != 0 && chmod(path.c_str(), 0700) != 0)
    throw systemProblem("Cannot close " + path);
}

}  // namespace vell::headless

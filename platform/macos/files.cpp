#include "platform/files.h"

#include <copyfile.h>
#include <fcntl.h>
#include <stdio.h>  // NOLINT: the system's own header declares renamex_np
#include <sys/attr.h>
#include <sys/param.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "platform/descriptor.h"

namespace vell::platform {
namespace {

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * 1'000'000'000LL + time.tv_nsec; }

FileFacts factsFrom(const struct stat& status) {
  return {.identity = {.device = status.st_dev,
                       .inode = status.st_ino,
                       .born = nanoseconds(status.st_birthtimespec)},
          .mode = status.st_mode,
          .links = status.st_nlink,
          .owner = status.st_uid,
          .group = status.st_gid,
          .size = status.st_size,
          .modified = nanoseconds(status.st_mtimespec),
          .changed = nanoseconds(status.st_ctimespec)};
}

/// Finder shows when a document was made; replacing the file is not to change that.
void copyBirth(int from, int to) {
  struct stat status {};
  if (::fstat(from, &status) != 0) return;
  attrlist wanted{};
  wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
  wanted.commonattr = ATTR_CMN_CRTIME;
  ::fsetattrlist(to, &wanted, &status.st_birthtimespec, sizeof status.st_birthtimespec, 0);
}

}  // namespace

std::optional<FileFacts> factsOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return factsFrom(status);
}

std::optional<FileFacts> factsOf(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return std::nullopt;
  return factsFrom(status);
}

bool copyAttributes(int from, int to) {
  copyBirth(from, to);
  return ::fcopyfile(from, to, nullptr, COPYFILE_ACL | COPYFILE_XATTR) == 0;
}

void beginSyncToDisk(int) {}  // there is no such request

// fsync leaves the bytes in the drive's cache.
bool syncToDisk(int descriptor) { return ::fcntl(descriptor, F_FULLFSYNC) == 0 || ::fsync(descriptor) == 0; }

/// Anywhere on its volume but in the trash.
std::optional<std::string> findFile(const FileIdentity& identity, const std::string&) {
  const std::string byInode =
      "/.vol/" + std::to_string(identity.device) + "/" + std::to_string(identity.inode);
  const Descriptor file(::open(byInode.c_str(), O_EVTONLY | O_CLOEXEC));
  const auto facts = file ? factsOf(file.get()) : std::nullopt;
  std::array<char, MAXPATHLEN> path{};
  if (!facts || facts->identity != identity || ::fcntl(file.get(), F_GETPATH, path.data()) != 0)
    return std::nullopt;
  std::string found = path.data();
  if (found.find("/.Trash") != std::string::npos) return std::nullopt;
  return found;
}

bool swapFiles(const std::string& one, const std::string& other) {
  return renamex_np(one.c_str(), other.c_str(), RENAME_SWAP) == 0;
}

}  // namespace vell::platform

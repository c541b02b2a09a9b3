#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

#include "platform/identifier_index.h"

namespace vell::platform {
namespace {

std::int64_t nanoseconds(const statx_timestamp& time) {
  return time.tv_sec * 1'000'000'000 + static_cast<std::int64_t>(time.tv_nsec);
}

std::optional<FileFacts> factsOf(int directory, const char* path, int flags) {
  struct statx status {};
  if (::statx(directory, path, flags, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) return std::nullopt;
  const bool tellsBirth = (status.stx_mask & STATX_BTIME) != 0;
  return FileFacts{.identity = {.device = makedev(status.stx_dev_major, status.stx_dev_minor),
                                .inode = status.stx_ino,
                                .born = tellsBirth ? nanoseconds(status.stx_btime) : 0},
                   .mode = status.stx_mode,
                   .links = status.stx_nlink,
                   .owner = status.stx_uid,
                   .group = status.stx_gid,
                   .size = static_cast<off_t>(status.stx_size),
                   .modified = nanoseconds(status.stx_mtime),
                   .changed = nanoseconds(status.stx_ctime)};
}

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// The kernel and its security modules set these, not people.
bool isSystems(std::string_view attribute) {
  return attribute.starts_with("security.") || attribute.starts_with("trusted.");
}

/// None for a file system without attributes.
std::vector<std::string> attributesOf(int descriptor) {
  const ssize_t size = ::flistxattr(descriptor, nullptr, 0);
  if (size <= 0) return {};
  std::string names(static_cast<std::size_t>(size), '\0');
  const ssize_t length = ::flistxattr(descriptor, names.data(), names.size());
  std::vector<std::string> list;
  for (std::size_t at = 0; length > 0 && at < static_cast<std::size_t>(length); at += list.back().size() + 1)
    list.emplace_back(&names[at]);
  std::erase_if(list, isSystems);
  return list;
}

bool copyAttribute(int from, int to, const std::string& name) {
  const ssize_t size = ::fgetxattr(from, name.c_str(), nullptr, 0);
  if (size < 0) return false;
  std::string value(static_cast<std::size_t>(size), '\0');
  return ::fgetxattr(from, name.c_str(), value.data(), value.size()) == size &&
         ::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) == 0;
}

}  // namespace

std::optional<FileFacts> factsOf(const std::string& path) { return factsOf(AT_FDCWD, path.c_str(), 0); }

std::optional<FileFacts> factsOf(int descriptor) { return factsOf(descriptor, "", AT_EMPTY_PATH); }

// The folder may have given the new file an access list of its own.
bool copyAttributes(int from, int to) {
  const std::vector<std::string> names = attributesOf(from);
  bool all = true;
  for (const std::string& own : attributesOf(to))
    if (std::find(names.begin(), names.end(), own) == names.end())
      all = ::fremovexattr(to, own.c_str()) == 0 && all;
  for (const std::string& name : names) all = copyAttribute(from, to, name) && all;
  return all;
}

void beginSyncToDisk(int descriptor) { ::sync_file_range(descriptor, 0, 0, SYNC_FILE_RANGE_WRITE); }

bool syncToDisk(int descriptor) { return ::fsync(descriptor) == 0; }

std::optional<std::string> findFile(const FileIdentity& identity, const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(folder.c_str()));
  if (!directory) return std::nullopt;
  while (const dirent* entry = ::readdir(directory.get())) {
    if (entry->d_ino != identity.inode) continue;
    std::string candidate = (folder / entry->d_name).string();
    const auto facts = factsOf(candidate);
    if (facts && facts->identity == identity) return candidate;
  }
  return std::nullopt;
}

bool swapFiles(const std::string& one, const std::string& other) {
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

std::vector<std::string> findFilesByIdentifier(const std::string& identifier,
                                               std::chrono::duration<double> /*limit*/) {
  return IdentifierIndex().find(identifier);
}

}  // namespace vell::platform

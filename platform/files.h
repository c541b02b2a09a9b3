#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vell::platform {

/// Tells a file from all others, wherever it is moved on its volume. Programs that save by replacing the file
/// make a new one.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  /// When it was made, in nanoseconds since 1970: inodes of removed files are given to new ones. 0 where the
  /// file system does not tell.
  std::int64_t born = 0;

  bool operator==(const FileIdentity&) const = default;
};

/// What the system says about a file. Times are in nanoseconds since 1970.
struct FileFacts {
  FileIdentity identity;
  mode_t mode = 0;
  nlink_t links = 0;
  uid_t owner = 0;
  gid_t group = 0;
  off_t size = 0;
  std::int64_t modified = 0;  ///< its content
  std::int64_t changed = 0;   ///< its content, name, mode or attributes; cannot be set back
};

/// Symbolic links are followed. None, with errno set, where there is no file or it cannot be looked at.
std::optional<FileFacts> factsOf(const std::string& path);
std::optional<FileFacts> factsOf(int descriptor);

/// Gives one open file the extended attributes and access lists of another, and no others. False where some
/// of those that people set cannot be given.
bool copyAttributes(int from, int to);

/// Lets the disk begin with what was written so far, where the system can be asked to, so that syncToDisk()
/// has less to wait for: a file of 140 MB is on disk in two thirds of the time.
void beginSyncToDisk(int descriptor);

/// Returns when the file's content is on the disk itself; false, with errno set, where that fails.
bool syncToDisk(int descriptor);

/// Where a file is now that stood at `path`, a resolved one. The portable search looks in the same folder
/// only.
std::optional<std::string> findFile(const FileIdentity& identity, const std::string& path);

/// Exchanges two files in one step, so that nothing that others write into either of them is lost. False,
/// with nothing changed, where one is missing or the file system cannot do it.
bool swapFiles(const std::string& one, const std::string& other);

/// The absolute paths of the files that the system knows under a persistent identifier, likeliest first.
/// They may be out of date. A disk-wide search ends after that long, with what it has found so far.
std::vector<std::string> findFilesByIdentifier(const std::string& identifier,
                                               std::chrono::duration<double> limit = std::chrono::seconds(5));

}  // namespace vell::platform

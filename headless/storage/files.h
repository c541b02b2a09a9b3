#pragma once

#include <sys/types.h>

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vell::headless {

/// What a file looked like when it was last read or written; it differs once another program has written it.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = -1;
  std::filesystem::file_time_type modified;
  std::time_t seconds = 0;  ///< `modified` since 1970

  bool operator==(const FileStamp&) const = default;
};

struct FileContent {
  std::string bytes;
  FileStamp stamp;
};

/// Tells contents apart, within one run.
std::size_t hashOf(std::string_view bytes);

/// The stamp of the file at `path`, links followed; the default one where there is none.
FileStamp stampOf(const std::string& path);

/// The whole regular file. Throws Problem.
FileContent readFile(const std::string& path);

/// The mode of new files, less the umask.
inline constexpr mode_t usualMode = 0666;

/// Replaces the file's content in one step: a reader finds the old content or the new, even if the machine
/// stops meanwhile. The content is on disk when this returns. The file's mode and the links that lead to it
/// stay; a new file gets `newMode` less the umask. Throws Problem, also where the file is write-protected.
FileStamp replaceFile(const std::string& path, std::string_view bytes, mode_t newMode = usualMode);

/// The same if the file looks as expected, or is gone, at the moment of replacing it. Else the file is left
/// alone and there is no stamp.
std::optional<FileStamp> replaceExpected(const std::string& path, std::string_view bytes,
                                         const FileStamp& expected);

/// Removes temporary files that interrupted replacements left beside the file.
void removeAbandoned(const std::string& path);

/// A new file with these bytes, which is on disk when it returns. Throws Problem, also where there is a file
/// at `path`.
FileStamp createFile(const std::string& path, std::string_view bytes);

/// Removes the file; a missing one is fine. Throws Problem.
void removeFile(const std::string& path);

/// Makes the directory with those above it, for this user alone; an existing one is closed to others.
/// Throws Problem.
void makePrivateDirectory(const std::string& path);

}  // namespace vell::headless

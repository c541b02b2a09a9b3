#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "headless/editing/problem.h"
#include "platform/files.h"

namespace vell::headless {

/// What a file looked like when it was last read or written; it differs once another program has written it.
/// Times are in nanoseconds since 1970.
struct FileStamp {
  platform::FileIdentity file;
  off_t size = -1;
  std::int64_t modified = 0;
  std::int64_t changed = 0;  ///< cannot be set back as `modified` can; renaming the file sets it, too

  bool operator==(const FileStamp&) const = default;
  /// The same file with the same content, whatever its name.
  bool hasContentOf(const FileStamp& other) const {
    return file == other.file && size == other.size && modified == other.modified;
  }
};

struct FileContent {
  std::string bytes;
  FileStamp stamp;
};

/// A file that cannot be read, or not as an outline. `what()` is "Cannot open <path>: <reason>".
class UnreadableFile : public Problem {
 public:
  UnreadableFile(const std::string& path, const std::string& reason)
      : Problem("Cannot open " + path + ": " + reason), reason_(reason) {}
  const std::string& reason() const { return reason_; }

 private:
  std::string reason_;
};

/// What a file holds or is to hold, in pieces that need not stand together in memory.
using Pieces = std::vector<std::string_view>;

/// The content in blocks, which begin at the same bytes whatever the pieces are.
void forEachBlock(const Pieces& content, const std::function<void(std::string_view block)>& use);

/// Tells contents apart, within one run.
std::size_t hashOf(const Pieces& content);

/// The stamp of the file at `path`, links followed; the default one where there is none.
FileStamp stampOf(const std::string& path);
FileStamp stampOf(int descriptor);

/// The whole regular file. Throws UnreadableFile.
FileContent readFile(const std::string& path);

/// Where the file is now that stood at `path`, if it was renamed: beside its former place or, where the
/// system can tell, anywhere else. A name that only extends the former one is a backup and not meant.
std::optional<std::string> renamedFile(const std::string& path, const platform::FileIdentity& file);

/// The mode of new files, less the umask.
inline constexpr mode_t usualMode = 0666;

/// Replaces the file's content in one step: a reader finds the old content or the new, even if the machine
/// stops meanwhile. The content is on disk when this returns. The links that lead to the file stay; a new
/// file gets `newMode` less the umask. Throws Problem, also where the file is write-protected.
FileStamp replaceFile(const std::string& path, const Pieces& content, mode_t newMode = usualMode);

struct Replaced {
  FileStamp stamp;
  bool anew = false;  ///< there was no file any more
};

/// The same if the file looks as expected, or is gone, at the moment of replacing it. Else the file is left
/// alone and nothing is returned. The file's owner, mode, access lists and extended attributes stay. Where
/// that is not possible for a new file in its place, or the file has several names, or nothing may be added
/// to its folder, the file is overwritten as it stands; a copy of the content is at `spare` meanwhile.
std::optional<Replaced> replaceExpected(const std::string& path, const Pieces& content,
                                        const FileStamp& expected, const std::string& spare);

/// Removes the temporary files that interrupted replacements left in the folder.
void removeAbandoned(const std::string& folder);

/// A new file with this content, which is on disk when it returns. Throws Problem, also where there is a file
/// at `path`.
FileStamp createFile(const std::string& path, const Pieces& content);

/// Removes the file; a missing one is fine. Throws Problem.
void removeFile(const std::string& path);

/// Makes the directory with those above it, each that is missing for this user alone. Throws Problem.
void makeDirectories(const std::string& path);

/// The same; an existing one is closed to others.
/// Throws Problem.
void makePrivateDirectory(const std::string& path);

}  // namespace vell::headless

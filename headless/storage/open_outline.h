#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "formats/format.h"
#include "headless/document.h"
#include "headless/editing/editor.h"
#include "headless/editing/history.h"
#include "headless/editing/row_refs.h"
#include "headless/storage/files.h"

namespace vell::headless {

/// The format of new files with that name. Throws Problem if outlines cannot be kept in such files.
const formats::Format& fileFormat(const std::string& path);

/// What a file holds, as an outline.
struct FileRows {
  std::unique_ptr<Outline> outline;
  const formats::Format* format;
  FileStamp stamp;
  std::size_t contentHash;
  std::string idFault;  ///< what is wrong with persistent ids of the rows; mostly empty
};

/// What a request does with an outline.
enum class Use { reading, changing };

/// Who is at work on an outline: any number that read it, or one that changes it. One that waits to change it
/// lets no further readers in. Saving joins whoever admits it without asking: it reads while only the commit
/// of a change is left, and settles a conflict for a user who waits for that.
class Users {
 public:
  bool admits(Use use) const {
    return changing_ == 0 && (use == Use::reading ? waiting_ == 0 : readers_ == 0);
  }
  void enter(Use use) { ++(use == Use::reading ? readers_ : changing_); }
  void leave(Use use) { --(use == Use::reading ? readers_ : changing_); }
  void beginWaiting(Use use) { waiting_ += use == Use::changing ? 1 : 0; }
  void endWaiting(Use use) { waiting_ -= use == Use::changing ? 1 : 0; }
  std::size_t count() const { return readers_ + changing_; }
  bool isChanging() const { return changing_ > 0; }

 private:
  std::size_t readers_ = 0;
  std::size_t waiting_ = 0;
  std::size_t changing_ = 0;
};

/// An outline that is open: its rows, the file that keeps them and the editor that shows them.
class OpenOutline {
 public:
  /// Reads the file at that standardised path; the content tells its format where the name does not. Throws
  /// UnreadableFile and Abandoned.
  static std::unique_ptr<OpenOutline> read(const std::string& path);
  /// A new outline without rows that will be kept at `path`; nothing is written yet.
  static std::unique_ptr<OpenOutline> create(const std::string& path, const formats::Format& format);

  OpenOutline(FileRows rows, std::string path);

  /// Outlives the outline for those that wait for it.
  const std::shared_ptr<Users>& users() const { return users_; }

  Outline& outline() { return *outline_; }
  const Outline& outline() const { return *outline_; }
  Editor& editor() { return editor_; }
  const Editor& editor() const { return editor_; }
  History& history() { return history_; }
  /// Finds its rows by what clients call them.
  RowRefs refs() const { return {*outline_, editor_, displayName()}; }

  const std::string& persistentId() const { return outline_->persistentId(); }
  std::string displayName() const;
  const formats::Format& format() const { return *format_; }

  /// Where its rows are kept: the user's file, or the container while the outline is untitled.
  const std::string& storagePath() const { return path_; }
  /// The user has no file of it.
  bool isUntitled() const { return untitled_; }
  void setUntitled() { untitled_ = true; }

  /// The file as we last read or wrote it.
  const FileStamp& stamp() const { return stamp_; }
  /// The file lacks changes, or was never written.
  bool isDirty() const { return outline_->revision() != savedRevision_ || stamp_ == FileStamp(); }
  /// Notes that the file holds that revision; the hash is that of its bytes.
  void markSaved(std::uint64_t revision, FileStamp stamp, std::size_t contentHash);
  /// The file has another name now.
  void rename(const std::string& path, FileStamp stamp);
  /// Notes that the file looks different and holds the same.
  void acceptTouch(FileStamp stamp) { stamp_ = stamp; }
  /// Gives the outline an id that its file may not hold. This does not make it dirty.
  void identify(const std::string& persistentId);
  /// Keeps the outline in another file, which holds all of it in that format, from now on.
  void moveTo(const std::string& path, const formats::Format& format, FileStamp stamp,
              std::size_t contentHash);
  /// Takes over rows that were read anew; the undo history ends. Returns what it held before, to be freed
  /// where that holds up nobody.
  std::shared_ptr<void> takeOver(FileRows rows);
  /// What was wrong with persistent ids when the rows were read; mostly empty.
  const std::string& idFault() const { return idFault_; }

 private:
  friend class Rereading;

  std::shared_ptr<Users> users_ = std::make_shared<Users>();
  std::unique_ptr<Outline> outline_;
  const formats::Format* format_;
  std::string path_;
  bool untitled_ = false;
  FileStamp stamp_;
  std::uint64_t savedRevision_;
  std::size_t contentHash_;
  std::string idFault_;
  Editor editor_;
  History history_;
};

/// Reads the file of an open outline once more, beside the application. The rows get new session ids. The
/// outline must not be changed from the construction on until the rows are taken over.
class Rereading {
 public:
  explicit Rereading(const OpenOutline& opened);

  void run();

  /// The file holds what was last read or written.
  bool isSame() const { return same_; }
  const FileStamp& stamp() const { return stamp_; }
  /// None where the file holds the same or cannot be read.
  std::optional<FileRows> takeRows() { return std::exchange(rows_, std::nullopt); }

 private:
  std::string path_;
  const formats::Format& format_;
  SessionId firstId_;
  std::size_t contentHash_;
  bool same_ = false;
  FileStamp stamp_;
  std::optional<FileRows> rows_;
};

}  // namespace vell::headless

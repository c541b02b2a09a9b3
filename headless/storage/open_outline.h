#pragma once

#include <memory>
#include <string>

#include "formats/format.h"
#include "headless/document.h"
#include "headless/editing/editor.h"
#include "headless/editing/history.h"
#include "headless/editing/row_refs.h"
#include "headless/storage/files.h"

namespace vell::headless {

/// The format of new files with that name. Throws Problem if outlines cannot be kept in such files.
const formats::Format& fileFormat(const std::string& path);

/// What a request does with an outline.
enum class Use { reading, changing };

/// The requests that are at work on an outline: any number that read it, or one that changes it. One that
/// waits to change it lets no further readers in.
class Users {
 public:
  bool admits(Use use) const { return !changing_ && (use == Use::reading ? waiting_ == 0 : readers_ == 0); }
  void enter(Use use) { use == Use::reading ? void(++readers_) : void(changing_ = true); }
  void leave(Use use) { use == Use::reading ? void(--readers_) : void(changing_ = false); }
  void beginWaiting(Use use) { waiting_ += use == Use::changing ? 1 : 0; }
  void endWaiting(Use use) { waiting_ -= use == Use::changing ? 1 : 0; }
  std::size_t count() const { return readers_ + (changing_ ? 1 : 0); }

 private:
  std::size_t readers_ = 0;
  std::size_t waiting_ = 0;
  bool changing_ = false;
};

/// An outline that is open: its rows, the file that keeps them and the editor that shows them.
class OpenOutline {
 public:
  /// Reads the file at that standardised path; the content tells its format where the name does not. Throws
  /// UnreadableFile.
  static std::unique_ptr<OpenOutline> read(const std::string& path);
  /// A new outline without rows that will be kept at `path`; nothing is written yet.
  static std::unique_ptr<OpenOutline> create(const std::string& path, const formats::Format& format);

  OpenOutline(std::unique_ptr<Outline> outline, const formats::Format& format, std::string path,
              FileStamp stamp, std::size_t contentHash);

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
  /// Takes over the file's new stamp if its content is unchanged; else returns false.
  bool acceptTouch();
  /// Gives the outline an id that its file may not hold. This does not make it dirty.
  void identify(const std::string& persistentId);
  /// Keeps the outline in another file, which holds all of it in that format, from now on.
  void moveTo(const std::string& path, const formats::Format& format, FileStamp stamp,
              std::size_t contentHash);
  /// Reads the rows anew from the file; they get new session ids, and the undo history ends. Returns false
  /// and changes nothing if the file cannot be read.
  bool reload();

 private:
  std::shared_ptr<Users> users_ = std::make_shared<Users>();
  std::unique_ptr<Outline> outline_;
  const formats::Format* format_;
  std::string path_;
  bool untitled_ = false;
  FileStamp stamp_;
  std::uint64_t savedRevision_;
  std::size_t contentHash_;
  Editor editor_;
  History history_;
};

}  // namespace vell::headless

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "headless/editing/edit.h"
#include "tests/formats/support.h"

namespace vell::formats {

/// What a format holds, of rows that its readers made.
Holds heldBy(const Format& format);

enum class ChangeKind { text, append, type, attribute, persistentId, remove, before, after, child, move };
inline constexpr std::size_t changeKinds = 10;

/// A file as it was read and the changes made to it since. Each check returns what is wrong, or nothing.
class ChangedFile {
 public:
  /// Throws FormatError.
  ChangedFile(const Format& format, const std::string& text);

  std::size_t rowCount() const { return outline_->rowCount(); }
  /// What a writer makes of it now.
  std::string now() const { return fileText(*format_, *outline_); }
  /// What was changed, for people.
  const std::string& story() const { return story_; }

  /// Changes the row of that place in document order, with content that follows from the seed. False where
  /// that row cannot change so.
  bool change(std::size_t row, ChangeKind kind, unsigned seed);
  /// Undoes every change.
  void undo();

  /// The file holds what its format cannot: an id twice, or control characters. Its rows may read back
  /// otherwise.
  bool isFaulty() const;
  /// The file is byte for byte what was read.
  std::string differs() const;
  /// The file reads back as the rows that the outline holds.
  std::string readsOtherwise() const;
  /// The last change, the only one so far, left alone every byte outside the changed row and what separates
  /// it from its neighbours.
  std::string touchesOthers() const;

 private:
  struct Range {
    std::size_t begin, end;
  };
  const SourceSpan& span(const Row& row) const { return *outline_->source()->find(row.id()); }
  std::vector<Range> pieces() const;
  Range ownLines(const Row& row) const;
  Range around(Range range) const;
  Range beside(const Row& parent, const Row* before) const;

  const Format* format_;
  Holds holds_;
  std::unique_ptr<Outline> outline_ = std::make_unique<Outline>();
  std::vector<headless::Change> changes_;
  std::string story_;
  /// Where the source may change by the first change.
  Range free_{};
};

}  // namespace vell::formats

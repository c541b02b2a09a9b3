#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "headless/editing/edit.h"
#include "tests/formats/support.h"

namespace vell::formats {

/// What a format holds, of rows that its readers made.
Holds heldBy(const Format& format);

enum class ChangeKind { text, append, type, attribute, persistentId, remove, before, after, child, move };
inline constexpr std::size_t changeKinds = 10;

/// A file as it was read and the changes made to it since.
class ChangedFile {
 public:
  /// Throws FormatError.
  ChangedFile(std::string_view format, std::string_view text);

  Outline& outline() { return outline_; }
  headless::Edit& edit() { return edit_; }
  /// The file as it is to be written now.
  std::string written() const { return fileText(format_, outline_).string(); }
  /// Undoes every change.
  void undo();

  // Changes to rows, which are named by their text; "" is the root. Texts are inline markdown.
  const Row& row(std::string_view text) const;
  void text(std::string_view row, std::string_view text) { edit_.setText(this->row(row), parse(text)); }
  void attributes(std::string_view row, Attributes attributes) {
    edit_.setAttributes(this->row(row), std::move(attributes));
  }
  /// Creates a row before that child of the parent or last.
  void create(std::string_view parent, std::string_view text, std::string_view before = {}) {
    edit_.insert(edit_.make({.text = parse(text)}), row(parent), before.empty() ? nullptr : &row(before));
  }
  void move(std::string_view row, std::string_view parent, std::string_view before = {}) {
    edit_.place(this->row(row), this->row(parent), before.empty() ? nullptr : &this->row(before));
  }
  void remove(std::string_view row) { edit_.remove(this->row(row)); }

  /// Changes the row of that place in document order, with content that follows from the seed. False where
  /// that row cannot change so.
  bool change(std::size_t row, ChangeKind kind, unsigned seed);
  /// What was changed so, for people.
  const std::string& story() const { return story_; }

  // Each check returns what is wrong, or nothing.
  /// The file is byte for byte what was read.
  std::string differs() const;
  /// The file reads back as the rows that the outline holds.
  std::string readsOtherwise() const;
  /// The last change, the only one so far, left alone every byte outside the changed row and what separates
  /// it from its neighbours.
  std::string touchesOthers() const;
  /// The file holds what its format cannot: an id twice, or control characters. Its rows may read back
  /// otherwise.
  bool isFaulty() const;

 private:
  struct Range {
    std::size_t begin, end;
  };
  std::string readsOtherwise(const std::string& written) const;
  static Text parse(std::string_view markdown);
  const SourceSpan& span(const Row& row) const { return *outline_.source()->find(row.id()); }
  std::vector<Range> pieces() const;
  Range ownLines(const Row& row) const;
  Range around(Range range) const;
  Range beside(const Row& parent, const Row* before) const;

  const Format& format_;
  Holds holds_;
  Outline outline_;
  headless::Edit edit_;
  std::vector<headless::Change> changes_;
  std::string story_;
  /// Where the source may change by the first change.
  Range free_{};
};

}  // namespace vell::formats

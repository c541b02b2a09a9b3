#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "headless/editing/edit.h"
#include "tests/formats/support.h"

namespace vell::formats {

/// Changes to the rows of a file, which are named by their text; "" is the root.
class RowChanges {
 public:
  static constexpr Timestamp readTime = 1'790'000'000'000;    // 2026-09-21T14:13:20Z
  static constexpr Timestamp changeTime = 1'790'000'005'000;  // 2026-09-21T14:13:25Z

  /// Throws FormatError.
  RowChanges(std::string_view format, std::string_view source) : format_(*formatNamed(format)) {
    readFile(format_, std::string(source), {readTime}, outline_);
  }

  const Row& row(std::string_view text) {
    const Row* row = &outline_.root();
    while (row && row->text().string() != text) row = nextInOrder(row, &outline_.root());
    if (!row) throw std::out_of_range("no row \"" + std::string(text) + "\"");
    return *row;
  }
  Outline& outline() { return outline_; }
  headless::Edit& edit() { return edit_; }

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

  std::string written() const { return fileText(format_, outline_); }
  /// What is written when all changes are undone.
  std::string undone() {
    std::vector<headless::Change> changes = edit_.take();
    headless::undo(outline_, changes);
    return written();
  }

 private:
  static Text parse(std::string_view markdown);

  const Format& format_;
  Outline outline_;
  headless::Edit edit_{outline_, changeTime};
};

/// A change to a file and the file behind it.
struct UpdateCase {
  const char* about;
  std::string_view source;
  void (*change)(RowChanges& rows);
  std::string_view written;
};

/// Checks that the change is written so and that undoing it writes the source.
void checkUpdate(std::string_view format, const UpdateCase& row);

}  // namespace vell::formats

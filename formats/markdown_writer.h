#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/markdown_nesting.h"
#include "formats/markdown_row.h"
#include "formats/markdown_source.h"

namespace vell::formats {

/// Writes rows one by one, copying from their source those that are as they were read and stand where they
/// stood.
class MarkdownWriter {
 public:
  /// Appends to `out`; `begun`: something stands there already.
  MarkdownWriter(const MarkdownSource& source, std::string& out, bool begun)
      : source_(source), out_(out), begun_(begun) {}

  /// Begins a row; `next` is the one behind it, without a row at the end. `caution` takes away liberties in
  /// how the row is written, for one that was misread: 0 none, 2 all.
  void enter(const PlacedRow& row, const PlacedRow& next, unsigned caution = 0);
  /// What a reader that begins with the row has to know, before it is written.
  MarkdownContext context() const;
  void write();
  /// Behind the last row.
  void finish();

  // Of the row that was written last.
  bool isCopied() const { return previous_.isCopied; }
  /// A reader can begin with its line.
  bool beginsLine() const;
  /// Where its line and its own bytes begin.
  std::size_t lineBegin() const { return ownBegin_ - previous_.prefix.size(); }
  std::size_t ownBegin() const { return ownBegin_; }
  /// How many items and quotes it stands in.
  std::size_t containers() const { return previous_.containers; }
  /// The source could go on behind it as it stands.
  bool standsAsItStood() const;
  /// Copies rows that follow it in the source, up to `last`, which `next` follows.
  void copyThrough(const PlacedRow& last, const PlacedRow& next);

 private:
  /// A row that is being written, or was.
  struct Current {
    const Row* row = nullptr;
    std::size_t depth = 0;
    const MarkdownPlace* read = nullptr;  ///< null where it is new
    bool hasChildren = false;
    MarkdownForm form = MarkdownForm::paragraph;
    char listMark = '\0';  ///< of an item
    bool keepsPrefix = false;
    std::string prefix = {};  ///< in front of its lines
    bool isBare = false;      ///< nothing but its mark
    bool isCopied = false;
    bool beginsLine = true;
    std::size_t containers = 0;
  };
  /// A row in whose item or quote the next rows can stand.
  struct Open {
    std::size_t depth;
    const MarkdownPlace* read;
    bool keepsPrefix;
    bool isAsRead;  ///< rows stand in it as they stood
    MarkdownForm form;
    std::string prefix;
    std::string childPrefix;
    std::size_t begin, end;  ///< of its own bytes in what was written
  };
  /// What the mark of the next sibling goes by.
  struct Sibling {
    char bullet = '\0';
    char delimiter = '\0';
    std::uint32_t number = 0;
    std::uint32_t step = 1;
  };
  struct Level {
    std::size_t level;
    bool isGranted;
  };

  void leaveContainers();
  bool standsInItsContainer(const MarkdownPlace& read) const;
  bool keepsPrefix(const MarkdownPlace& read) const;
  bool canCopy() const;
  void copy();
  void render();
  MarkdownForm chooseForm() const;
  Level headingLevel() const;
  bool swallowsNext(std::size_t level) const;
  std::string itemMark() const;
  void noteMark();
  static Sibling siblingOf(MarkdownForm form, std::string_view own, const Sibling& before);
  Sibling siblingAsRead(const Row& row) const;
  std::string prefix() const;
  std::string plainPrefix(const Open& open) const;
  void openContainer();
  void appendLines(std::string_view lines, std::string_view oldPrefix, std::string_view newPrefix);
  std::string_view own() const { return std::string_view(out_).substr(ownBegin_); }

  // What stands between rows: markdown_spacing.cpp.
  std::size_t neededLineEnds() const;
  bool beginsAnotherList() const;
  bool keepsListTight() const;
  std::size_t lineEndsHere() const;
  void begin(const std::string& prefix);
  void closeFence();
  bool fitsTail() const;
  void separate(const std::string& prefix);

  const MarkdownSource& source_;
  std::string& out_;
  bool begun_;
  unsigned caution_ = 0;
  std::size_t ownBegin_ = 0;
  Current now_;
  Current previous_;  ///< its row is null before the first
  PlacedRow next_{};
  MarkdownNesting nesting_;
  std::vector<Open> open_;
  std::vector<Sibling> siblings_;  ///< by depth
};

}  // namespace vell::formats

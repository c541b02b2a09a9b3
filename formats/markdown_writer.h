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

/// How much is left of the liberties that a writer takes with a row: none are taken where reading back showed
/// that the row is misread.
using Cautions = std::vector<unsigned char>;  // by place among the rows; 0: all

/// Writes rows, copying from their source those that are as they were read and stand where they stood.
class MarkdownWriter {
 public:
  /// `begun`: something stands in front of the rows already.
  MarkdownWriter(const MarkdownSource& source, bool begun, std::span<const unsigned char> cautions = {})
      : source_(source), begun_(begun), cautions_(cautions) {}

  std::string write(std::span<const PlacedRow> rows);
  /// Of that row, after writing.
  bool isCopied(std::size_t place) const { return isCopied_[place]; }

 private:
  /// A row that is being written, or was.
  struct Current {
    const Row* row = nullptr;
    std::size_t depth = 0;
    const MarkdownRow* read = nullptr;  ///< null where it is new
    bool hasChildren = false;
    MarkdownForm form = MarkdownForm::paragraph;
    char listMark = '\0';  ///< of an item
    bool keepsPrefix = false;
    std::string prefix = {};  ///< in front of its lines
    bool isBare = false;      ///< an item that is nothing but its mark
  };
  /// A row in whose item or quote the next rows can stand.
  struct Open {
    std::size_t depth;
    const MarkdownRow* read;
    bool keepsPrefix;
    bool isQuote;
    std::string childPrefix;
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

  unsigned caution() const { return at_ < cautions_.size() ? cautions_[at_] : 0; }
  void leaveContainers();
  bool standsInItsContainer(const MarkdownRow& read) const;
  bool keepsPrefix(const MarkdownRow& read) const;
  bool canCopy() const;
  void copy();
  void render();
  MarkdownForm chooseForm() const;
  Level headingLevel() const;
  bool swallowsNext(std::size_t level) const;
  std::string itemMark() const;
  void noteMark();
  std::string prefix() const;
  void openContainer(const std::string& prefix);
  std::size_t neededLineEnds() const;
  bool beginsAnotherList() const;
  std::size_t lineEndsHere() const;
  void begin(const std::string& prefix);
  void closeFence();
  void separate(const std::string& prefix);
  void appendLines(std::string_view lines, std::string_view oldPrefix, std::string_view newPrefix);
  void finish();
  std::string_view own() const { return std::string_view(out_).substr(ownBegin_); }

  const MarkdownSource& source_;
  bool begun_;
  std::span<const unsigned char> cautions_;
  std::string out_;
  std::size_t at_ = 0;
  std::size_t ownBegin_ = 0;
  Current now_;
  Current previous_;  ///< its row is null before the first
  PlacedRow next_{};
  MarkdownNesting nesting_;
  std::vector<Open> open_;
  std::vector<Sibling> siblings_;  ///< by depth
  std::vector<bool> isCopied_;
};

}  // namespace vell::formats

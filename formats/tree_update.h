#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/file_text.h"
#include "formats/rows.h"

namespace vell::formats {

/// Blanks before a row beyond which deeper ones are not indented further, so that a file grows with its rows
/// alone.
inline constexpr std::size_t maxIndent = 64;

/// Writes an outline in a format whose rows enclose their children, as elements and objects do. Each row has
/// a text before its children and, where it can have any, one behind them; the root's are those around all
/// rows. What a source says about rows that did not change is copied with what stands between them. What
/// stands before a row goes where the row goes; a comment before a row that is deleted stays.
class TreeUpdate {
 public:
  /// The reader must have told the source where the root stands. In formats whose `rowsSpanLines` a row that
  /// moves has its own lines indented anew.
  TreeUpdate(const Outline& outline, bool rowsSpanLines);
  virtual ~TreeUpdate() = default;

  FileText write();

 protected:
  /// A row's own text. `close` is empty where the row cannot hold children as it is written.
  struct OwnText {
    std::string open;
    std::string close;
  };

  /// False where the root's own text has to change.
  virtual bool rootIsAsRead() const { return true; }
  /// What stands before the root, where that is not as it was read.
  virtual std::string changedHead() const { return {}; }
  /// The text of a row that changed (or the root), or with `span` null that of a new one. The line break and
  /// the blanks before the row are its `indent`: empty where it does not begin a line.
  virtual OwnText render(const Row& row, const SourceSpan* span, std::string_view indent) = 0;
  /// The indentation of the first child of a row.
  virtual std::string childIndent(const Row& row, const SourceSpan* span, std::string_view indent) const = 0;
  /// What stands behind the last child of a row that had none.
  virtual std::string closeIndent(const Row& row, const SourceSpan* span, std::string_view indent) const = 0;
  /// The part of a separator that people would miss; blanks are behind it.
  virtual std::string_view contentOf(std::string_view separator) const = 0;
  /// The end of what belongs to the row that ends there: a comment behind it on the line.
  virtual std::size_t trailEnd(std::size_t rowEnd) const = 0;
  /// What separates a child from what is before it: made of what stood before it or its indentation.
  virtual std::string separator(std::string_view lead, bool isFirst) const = 0;

  /// The line break and the blanks that end there, or only blanks where no line begins with them.
  std::string_view indentAt(std::size_t offset) const;
  std::string_view slice(std::size_t begin, std::size_t end) const {
    return std::string_view(source_.text()).substr(begin, end - begin);
  }

  const Outline& outline_;
  const document::Source& source_;

 private:
  static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

  /// Where a row stood among the others.
  struct Place {
    std::size_t before = nowhere;       ///< end of what precedes the row
    std::size_t beforeClose = nowhere;  ///< end of what precedes its close
    SessionId previous = 0;             ///< the sibling before it
    SessionId lastChild = 0;
  };
  /// A row whose children are being written.
  struct Open {
    const Row* row;
    const SourceSpan* span;       ///< null where it is new
    bool isShifted = false;       ///< stands elsewhere than in the source, or is new
    std::string from = {};        ///< the indentation it had
    std::string indent = {};      ///< and has, where it is shifted
    std::string lastIndent = {};  ///< of its last child that is new here
    bool copiesClose = false;
    std::string close = {};
  };

  void findPlaces();
  const Place& placeOf(SessionId id) const { return places_[id - outline_.root().id()]; }
  bool stays(const Row& row) const;

  void enter(const Row& row);
  void leave();
  void separateKept(Open& row);
  void separateNew(Open& row);
  void writeOpen(Open& row);
  void separateClose(const Open& row);
  void keepRemains(SessionId lastSibling);
  void writeTrail();

  std::string newIndent(const Open& parent, const Row& row) const;
  std::string indentOf(const Open& row) const;
  std::string shifted(std::string_view text, const Open& row) const;

  bool rowsSpanLines_;
  std::vector<Place> places_;
  std::vector<Open> open_;
  std::size_t lastEnd_ = nowhere;  ///< where in the source that ends which was written last
  FileText out_;
};

}  // namespace vell::formats

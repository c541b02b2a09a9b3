#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "document/row.h"

namespace vell::document {

/// What a row says, apart from its place.
struct RowContent {
  RowType type = RowType::body;
  Text text;
  Attributes attributes;
  std::string persistentId;  ///< empty: none
  Timestamp created = 0;
  Timestamp modified = 0;
};

/// The bytes of a source that are one row's own. What stands between them and the bytes of the neighbours
/// separates the two.
struct SourceSpan {
  std::size_t begin = 0;
  std::size_t end = 0;
  // Where a format closes a row behind its children; else both 0.
  std::size_t closeBegin = 0;
  std::size_t closeEnd = 0;
  /// The row that was its parent.
  SessionId parent = 0;
};

/// The span that many bytes further on.
SourceSpan shifted(SourceSpan span, std::size_t bytes);

/// What a source says about the whole document.
struct DocumentContent {
  std::string persistentId;
  Attributes frontMatter;
  Timestamp created = 0;
};

/// What a format's reader keeps of a text beside the rows, for the writer that changes the text.
class SourceNotes {
 public:
  virtual ~SourceNotes() = default;
};

/// The text that an outline was read from, and where in it each row stands. It stays as it was read while the
/// outline changes, so that what is written follows from the source and the rows alone: a row that is as it
/// was read is written by copying its span, and a change that is undone leaves no trace.
class Source {
 public:
  /// `format` names the format of the text and must outlive the source.
  Source(std::string_view format, std::string text)
      : format_(format), text_(std::make_shared<const std::string>(std::move(text))) {}

  std::string_view format() const { return format_; }
  const std::string& text() const { return *text_; }
  /// For those who may need it longer than the source lives.
  const std::shared_ptr<const std::string>& sharedText() const { return text_; }
  const DocumentContent& document() const { return document_; }
  void setDocument(DocumentContent document) { document_ = std::move(document); }

  /// Null where the format keeps none.
  const SourceNotes* notes() const { return notes_.get(); }
  void setNotes(std::unique_ptr<const SourceNotes> notes) { notes_ = std::move(notes); }

  /// Rows must be added in the order of the text; their ids follow one another.
  void add(const Row& row, const SourceSpan& span);
  /// The span of the row; null where it was not read from this text.
  const SourceSpan* find(SessionId row) const;
  /// The spans of all rows, in the order of the text; the first is that of the row with the id `firstRow()`.
  const std::vector<SourceSpan>& spans() const { return spans_; }
  SessionId firstRow() const { return first_; }
  /// What the row said when it was read, null where it has said nothing else since.
  const RowContent* original(SessionId row) const;
  /// Keeps what a row of this source says, before its first change.
  void keepOriginal(const Row& row);
  /// Drops what a row said that is freed.
  void forget(SessionId row) { originals_.erase(row); }

 private:
  std::string_view format_;
  std::shared_ptr<const std::string> text_;
  DocumentContent document_;
  std::unique_ptr<const SourceNotes> notes_;
  SessionId first_ = 0;
  std::vector<SourceSpan> spans_;
  std::unordered_map<SessionId, RowContent> originals_;
};

}  // namespace vell::document

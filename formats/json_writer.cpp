#include "formats/json_writer.h"

#include "formats/json_text.h"

namespace vell::formats {
namespace {

enum class Ids { session, persistent };

class RowsWriter {
 public:
  RowsWriter(std::string& out, Ids ids) : out_(out), ids_(ids) {}

  /// Everything of a row but its closing brace.
  void open(const Row& row);
  void writeAll(std::span<const PlacedRow> rows);

 private:
  void writeIds(const Row& row);
  void writeTime(Timestamp time);
  void place(std::uint32_t depth);
  void reserve(std::size_t from, std::size_t written, std::size_t rows);

  std::string& out_;
  Ids ids_;
  std::uint32_t open_ = 0;  ///< rows whose brace is still open: one for each depth so far
  Timestamp time_ = 0;
  std::string timeText_;  ///< of `time_`: most rows have the time of the row before
};

void RowsWriter::open(const Row& row) {
  out_ += '{';
  writeIds(row);
  out_ += "\"type\":\"";
  out_ += name(row.type());
  out_ += "\",\"text\":";
  appendJsonRuns(out_, row.text());
  if (!row.attributes().empty()) {
    out_ += ",\"attributes\":";
    appendJsonObject(out_, row.attributes());
  }
  out_ += ",\"created\":\"";
  writeTime(row.created());
  out_ += "\",\"modified\":\"";
  writeTime(row.modified());
  out_ += '"';
}

void RowsWriter::writeIds(const Row& row) {
  if (ids_ == Ids::session) {
    out_ += "\"id\":";
    out_ += std::to_string(row.id());
    out_ += ',';
  }
  if (row.persistentId().empty()) return;
  out_ += ids_ == Ids::session ? "\"persistentId\":" : "\"id\":";
  appendJsonString(out_, row.persistentId());
  out_ += ',';
}

void RowsWriter::writeTime(Timestamp time) {
  if (time != time_ || timeText_.empty()) {
    time_ = time;
    timeText_ = document::formatTimestamp(time);
  }
  out_ += timeText_;
}

/// Ends the rows that the next one, of that depth, does not stand in; the outermost stand in nothing.
void RowsWriter::place(std::uint32_t depth) {
  if (depth == open_) {
    if (open_ > 0) out_ += ",\"children\":[";
    return;
  }
  out_ += '}';
  for (--open_; open_ > depth; --open_) out_ += "]}";
  out_ += ',';
}

/// Growing by doubling would hold a large answer twice and a half.
void RowsWriter::reserve(std::size_t from, std::size_t written, std::size_t rows) {
  const std::size_t perRow = (out_.size() - from) / written + 1;
  out_.reserve(from + rows * (perRow + perRow / 16));
}

void RowsWriter::writeAll(std::span<const PlacedRow> rows) {
  constexpr std::size_t sample = 4096;
  const std::size_t from = out_.size();
  out_ += '[';
  for (std::size_t index = 0; index < rows.size(); ++index) {
    if (index == sample) reserve(from, sample, rows.size());
    place(rows[index].depth);
    open(*rows[index].row);
    open_ = rows[index].depth + 1;
  }
  if (open_ > 0) {
    out_ += '}';
    for (--open_; open_ > 0; --open_) out_ += "]}";
  }
  out_ += ']';
}

void appendDocument(std::string& out, const Outline& outline, std::span<const PlacedRow> rows, Ids ids) {
  out += '{';
  if (!outline.persistentId().empty()) {
    out += ids == Ids::session ? "\"persistentId\":" : "\"id\":";
    appendJsonString(out, outline.persistentId());
    out += ',';
  }
  out += "\"created\":\"";
  document::appendTimestamp(out, outline.created());
  out += "\",";
  if (!outline.frontMatter().empty()) {
    out += "\"frontMatter\":";
    appendJsonObject(out, outline.frontMatter());
    out += ',';
  }
  out += "\"rows\":";
  RowsWriter(out, ids).writeAll(rows);
  out += '}';
}

void write(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, Ids ids,
           std::string& out) {
  if (rowsOnly) {
    RowsWriter(out, ids).writeAll(rows);
  } else {
    appendDocument(out, outline, rows, ids);
  }
}

}  // namespace

void writeSession(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  write(outline, rows, rowsOnly, Ids::session, out);
}

void writeJson(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  write(outline, rows, rowsOnly, Ids::persistent, out);
}

void appendSessionRow(std::string& out, const Row& row) {
  RowsWriter(out, Ids::session).open(row);
  out += '}';
}

}  // namespace vell::formats

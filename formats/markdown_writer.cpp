#include <optional>
#include <vector>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/markdown_format.h"
#include "formats/marked_line.h"

namespace vell::formats {
namespace {

/// The level a heading asks for, 0 where it asks for none.
std::size_t requestedLevel(const Row& row) {
  const std::string* level = leadValue(row);
  const bool isLevel =
      row.type() == RowType::heading && level && level->size() == 1 && *level >= "1" && *level <= "6";
  return isLevel ? static_cast<std::size_t>(level->front() - '0') : 0;
}

/// For each row whether it is a heading that may gather the rows behind it: all its later siblings are such
/// headings of the same level, so nothing is gathered that is not below it.
std::vector<bool> findSections(std::span<const PlacedRow> rows) {
  std::vector<bool> isSection(rows.size());
  std::vector<const Row*> nextSection;  // by depth: the sibling that comes next, if it is a section
  std::vector<bool> nextIsOther;        // by depth: it is no section
  for (std::size_t index = rows.size(); index-- > 0;) {
    const auto [row, depth] = rows[index];
    nextSection.resize(depth + 1);
    nextIsOther.resize(depth + 1);
    const Row* next = nextSection[depth];
    const bool fits = !nextIsOther[depth] && (!next || requestedLevel(*next) == requestedLevel(*row));
    isSection[index] = row->type() == RowType::heading && fits;
    nextSection[depth] = isSection[index] ? row : nullptr;
    nextIsOther[depth] = !isSection[index];
  }
  return isSection;
}

bool isListItem(RowType type) {
  return type == RowType::task || type == RowType::ordered || type == RowType::unordered;
}

class MarkdownWriter {
 public:
  MarkdownWriter(std::string& out, bool atStart) : out_(out), atStart_(atStart) {}

  void write(std::span<const PlacedRow> rows);

 private:
  /// What holds for the children of a row that is being written.
  struct Level {
    std::uint32_t indent = 0;   ///< tabs
    std::size_t section = 0;    ///< level of the section they stand in
    std::uint32_t ordinal = 0;  ///< of the last ordered row among them
  };

  void separate(const PlacedRow& placed);
  void writeRow(const Row& row, bool maySection);
  bool writeMark(const Row& row, bool maySection, RowTrailer& trailer);
  bool writeHeading(const Row& row, bool maySection, RowTrailer& trailer);
  void writeText(const Row& row);
  void writeFenced(const Row& row);
  void escapeStart(std::size_t from);
  void finishLine(const RowTrailer& trailer);

  std::string& out_;
  bool atStart_;
  std::optional<PlacedRow> previous_;
  std::vector<Level> levels_{Level{}};  ///< by depth; the last is that of the row being written
  std::size_t contentFrom_ = 0;
  std::size_t section_ = 0;  ///< level of the section that the row begins, 0 if none
};

void MarkdownWriter::write(std::span<const PlacedRow> rows) {
  const std::vector<bool> isSection = findSections(rows);
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const PlacedRow& placed = rows[index];
    levels_.resize(placed.depth + 1);
    separate(placed);
    writeRow(*placed.row, isSection[index]);
    const Level& level = levels_.back();
    levels_.push_back({level.indent + (section_ > 0 ? 0 : 1), section_ > 0 ? section_ : level.section, 0});
    previous_ = placed;
  }
}

/// An empty line wherever other programs would else join two rows to one paragraph.
void MarkdownWriter::separate(const PlacedRow& placed) {
  if (!previous_) return;
  const RowType before = previous_->row->type();
  const RowType type = placed.row->type();
  const bool bothItems = isListItem(before) && isListItem(type);
  const bool bothQuotes =
      before == RowType::quote && type == RowType::quote && previous_->depth == placed.depth;
  if (!bothItems && !bothQuotes) out_ += '\n';
}

void MarkdownWriter::writeRow(const Row& row, bool maySection) {
  Level& level = levels_.back();
  section_ = 0;
  level.ordinal = row.type() == RowType::ordered ? level.ordinal + 1 : 0;
  out_.append(level.indent, '\t');
  contentFrom_ = out_.size();
  if (row.type() == RowType::code && canBeFenced(row)) return writeFenced(row);
  RowTrailer trailer = trailerOf(row, false);
  if (writeMark(row, maySection, trailer)) {
    writeText(row);
  } else {
    appendInline(out_, row.text());
    escapeStart(contentFrom_);
    if (row.type() != RowType::body) trailer.type = row.type();
  }
  finishLine(trailer);
}

/// False where the type has no mark or the mark cannot hold the row.
bool MarkdownWriter::writeMark(const Row& row, bool maySection, RowTrailer& trailer) {
  const std::string* lead = leadValue(row);
  const std::string* done = row.attributes().find("done");
  const bool isDone = done && *done == "true";
  switch (row.type()) {
    case RowType::heading:
      return writeHeading(row, maySection, trailer);
    case RowType::task:
      out_ += isDone ? "- [x]" : "- [ ]";
      if (isDone && lead) trailer.attributes.remove("done");
      return true;
    case RowType::note:
      out_.append("> ").append(noteMark);
      return true;
    case RowType::quote:
      out_ += '>';
      return true;
    case RowType::unordered:
      out_ += '-';
      return true;
    case RowType::ordered:
      out_.append(std::to_string(levels_.back().ordinal)) += '.';
      return true;
    case RowType::hr:
      if (!row.text().empty()) return false;
      out_ += previous_ || !atStart_ ? "---" : "***";  // a document that begins with "---" has front matter
      return true;
    default:
      return false;
  }
}

bool MarkdownWriter::writeHeading(const Row& row, bool maySection, RowTrailer& trailer) {
  const std::size_t enclosing = levels_.back().section;
  const std::size_t natural = naturalLevel(enclosing);
  const std::size_t requested = requestedLevel(row);
  const bool granted = requested > enclosing && requested != natural;
  const std::size_t level = granted ? requested : natural;
  out_.append(level, '#');
  if (granted) trailer.attributes.remove(leadKey(row.type()));
  if (maySection && level > enclosing) {
    section_ = level;
  } else {
    trailer.type = RowType::heading;
  }
  return true;
}

void MarkdownWriter::writeText(const Row& row) {
  if (row.text().empty()) return;
  out_ += ' ';
  const std::size_t from = out_.size();
  appendInline(out_, row.text());
  const std::string_view line = std::string_view(out_).substr(contentFrom_);
  if (markdownMark(line).type != row.type()) out_.insert(from, 1, '\\');
}

/// Keeps text that begins like a mark from being read as one.
void MarkdownWriter::escapeStart(std::size_t from) {
  const std::string_view line = std::string_view(out_).substr(from);
  if (line.empty()) return;
  const bool isPlain =
      openingFence(line) == 0 && line != emptyMarkdownRow && markdownMark(line).type == RowType::body;
  if (isPlain) return;
  const std::size_t ordinal = ordinalLength(line);
  out_.insert(from + (ordinal > 0 ? ordinal - 1 : 0), 1, '\\');
}

void MarkdownWriter::finishLine(const RowTrailer& trailer) {
  const bool isEmpty = out_.size() == contentFrom_;
  if (isEmpty && trailer.empty()) out_ += emptyMarkdownRow;
  if (!isEmpty && !trailer.empty()) out_ += ' ';
  appendTrailer(out_, Times::dropped, trailer);
  out_ += '\n';
}

void MarkdownWriter::writeFenced(const Row& row) {
  const std::string_view text = row.text().string();
  const std::string fence = fenceFor(text);
  const std::string* language = leadValue(row);
  const bool leadIsMarked = language && isFenceInfo(*language);
  out_ += fence;
  if (leadIsMarked) out_ += *language;
  finishLine(trailerOf(row, leadIsMarked));
  appendFenced(out_, text, fence, levels_.back().indent);
}

}  // namespace

void writeMarkdown(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  std::string header;
  if (!rowsOnly) DocumentHeader(false).write(header, outline);
  if (!header.empty()) out.append("---\n").append(header).append(rows.empty() ? "---\n" : "---\n\n");
  MarkdownWriter(out, header.empty()).write(rows);
}

}  // namespace vell::formats

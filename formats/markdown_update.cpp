#include <algorithm>
#include <optional>
#include <utility>

#include "formats/document_header.h"
#include "formats/markdown_writer.h"
#include "text/utf8.h"

namespace vell::formats {
namespace {

/// Rows that are written before they are read again.
constexpr std::size_t usualPartRows = 128;
constexpr auto wholeFile = static_cast<std::size_t>(-1);
constexpr std::string_view frontMatterMark = "---";

/// What stands before the rows.
std::string headOf(const Outline& outline, const MarkdownSource& source) {
  const MarkdownHead& head = source.head();
  const std::string before(source.text().substr(0, head.bodyBegin));
  const std::string_view old =
      std::string_view(before).substr(head.headerBegin, head.headerEnd - head.headerBegin);
  const std::string lines = DocumentHeader(HeaderKind::yaml).update(old, outline);
  if (lines == old) return before;
  if (head.headerEnd > 0) return before.substr(0, head.headerBegin) + lines + before.substr(head.headerEnd);
  const std::string rule = std::string(frontMatterMark).append(source.lineEnd());
  return before + rule + lines + rule;
}

/// Writes the text of a file anew where its rows have changed. Only rows beside a change are written; what is
/// between them is copied. What was written is read again, from a row that stands as it stood to the first
/// one behind the change that does: a row that is misread is written with more care.
class MarkdownUpdate {
 public:
  MarkdownUpdate(const Outline& outline, std::size_t partRows);

  std::string write();
  /// Some row could not be written so that it is read as it is.
  bool isMisread() const { return isMisread_; }

 private:
  /// Rows to be written and read again. The first one stands already and stays, unless it begins the file.
  struct Part {
    std::size_t first = 0;
    std::size_t begin = 0;  ///< byte of the text
    MarkdownContext context = {};
    std::size_t containers = 0;  ///< that the context opens
    bool isHead = false;

    std::size_t toWrite() const { return isHead ? first : first + 1; }
  };
  /// How a part ends: with the file, before rows that can be copied, or before rows that are a part
  /// of their own.
  enum class End { file, copy, part };

  PlacedRow placed(std::size_t place) const;
  void findChanges();
  std::optional<std::size_t> findStart();
  Part beginHead() const;
  Part beginPart(std::size_t place);
  End writeChecked(Part& part);
  End writeRows(Part& part);
  bool canEnd() const;
  bool canCopyBehind(std::size_t place);
  std::optional<std::size_t> findMisread(const Part& part, End end) const;
  bool readsAs(const Part& part, std::size_t place, const MarkdownRow& read) const;
  bool takeCare(const Part& part, std::size_t misread);

  MarkdownSource source_;
  std::size_t partRows_;
  std::span<const Row* const> rows_;  ///< in order
  bool isOnePart_ = false;            ///< any change can change how all rows are read
  bool isMisread_ = false;
  bool mayBecomeHead_ = false;        ///< rows that look like front matter would be read as that
  std::vector<std::size_t> changes_;  ///< places of rows that do not stand behind the row they stood behind
  std::size_t change_ = 0;            ///< the first one that is not written
  struct {
    std::size_t change = static_cast<std::size_t>(-1);
    std::optional<std::size_t> place = {};
  } start_;  ///< what findStart() found for that change
  std::string out_;
  std::size_t next_ = 0;  ///< place of the row to be written
  std::optional<MarkdownWriter> writer_;
  std::optional<Part> nextPart_;
  std::vector<unsigned char> cautions_;  ///< by place in the part
  std::vector<bool> isCopied_;           ///< likewise
};

MarkdownUpdate::MarkdownUpdate(const Outline& outline, std::size_t partRows)
    : source_(outline), partRows_(partRows), out_(headOf(outline, source_)) {
  outline.number();
  rows_ = std::span(outline.rowsInOrder()).subspan(1);
  findChanges();
  const MarkdownHead& before = source_.head();
  const bool isSameHead = out_ == source_.text().substr(0, before.bodyBegin);
  const MarkdownHead now = isSameHead ? before : readMarkdownText(out_, MarkdownScope::file).head;
  mayBecomeHead_ = now.headerEnd == 0;
  isOnePart_ = partRows == wholeFile || source_.hasOpenFormula() || now.indentation != before.indentation ||
               (mayBecomeHead_ && source_.text().substr(before.bodyBegin).starts_with(frontMatterMark));
  if (isOnePart_ && !changes_.empty()) changes_.assign(1, 0);
  if (!isSameHead && (changes_.empty() || changes_.front() > 0)) changes_.insert(changes_.begin(), 0);
  const bool isBegun =
      before.headerEnd > 0 || out_.size() > text::byteOrderMark.size();  // which is no beginning
  writer_.emplace(source_, out_, isBegun);
  out_.reserve(source_.text().size() + out_.size());
}

std::string MarkdownUpdate::write() {
  if (changes_.empty()) return out_.append(source_.text().substr(source_.head().bodyBegin));
  const auto start = findStart();
  Part part = start ? beginPart(*start) : beginHead();
  for (;;) {
    switch (writeChecked(part)) {
      case End::file:
        return std::move(out_);
      case End::part:
        part = std::move(*nextPart_);
        break;
      case End::copy:
        if (change_ < changes_.size()) {
          part = beginPart(*findStart());
          break;
        }
        if (next_ < rows_.size()) writer_->copyThrough(placed(rows_.size() - 1), {nullptr, 0});
        writer_->finish();
        return std::move(out_);
    }
  }
}

PlacedRow MarkdownUpdate::placed(std::size_t place) const {
  return place < rows_.size() ? PlacedRow{rows_[place], rows_[place]->level() - 1} : PlacedRow{nullptr, 0};
}

void MarkdownUpdate::findChanges() {
  const MarkdownPlace* expected = source_.first();
  for (std::size_t place = 0; place < rows_.size(); ++place) {
    const Row& row = *rows_[place];
    const MarkdownPlace* read = source_.find(row);
    const bool isUnchanged =
        read && read == expected && row.level() == read->depth + 1 && source_.isAsRead(row);
    if (!isUnchanged) changes_.push_back(place);
    expected = read ? read + 1 : nullptr;
  }
  if (expected != source_.first() + source_.rowCount()) changes_.push_back(rows_.size());
}

/// The last row that a part can begin with before the next change, unless that is written already. Another
/// row is between the two, so that it can be written with more care.
std::optional<std::size_t> MarkdownUpdate::findStart() {
  const std::size_t after = change_ > 0 ? changes_[change_ - 1] + 1 : 0;
  if (start_.change != change_) {
    start_ = {change_, std::nullopt};
    for (std::size_t place = changes_[change_]; place-- > after + 1 && !start_.place;) {
      if (source_.beginsLine(*source_.find(*rows_[place - 1]))) start_.place = place - 1;
    }
  }
  return start_.place && *start_.place >= next_ ? start_.place : std::nullopt;
}

/// A file without a byte order mark gets one before a text that begins with that character.
MarkdownUpdate::Part MarkdownUpdate::beginHead() const {
  Part part{.isHead = true};
  if (!source_.text().starts_with(text::byteOrderMark)) part.context.lines = text::byteOrderMark;
  return part;
}

/// Copies what stands before that row.
MarkdownUpdate::Part MarkdownUpdate::beginPart(std::size_t place) {
  if (place > next_) writer_->copyThrough(placed(place - 1), placed(place));
  writer_->enter(placed(place), placed(place + 1));
  MarkdownContext context = writer_->context();
  writer_->write();
  next_ = place + 1;
  return {place, writer_->lineBegin(), std::move(context), writer_->containers()};
}

MarkdownUpdate::End MarkdownUpdate::writeChecked(Part& part) {
  constexpr int careful = 24;
  constexpr int maxAttempts = careful + 8;
  const MarkdownWriter before = *writer_;
  const std::size_t size = out_.size();
  const std::size_t change = change_;
  cautions_.clear();
  for (int attempt = 0;; ++attempt) {
    const End end = writeRows(part);
    const auto misread = findMisread(part, end);
    if (!misread) return end;
    if (attempt >= careful || !takeCare(part, *misread)) {
      attempt = std::max(attempt, careful);
      isMisread_ |= attempt == maxAttempts;
      if (attempt == maxAttempts) return end;
      cautions_.assign(next_ - part.first, 2);  // and again if that makes the part longer
    }
    writer_.emplace(before);
    out_.resize(size);
    change_ = change;
  }
}

/// Writes the rows of the part as far as it goes.
MarkdownUpdate::End MarkdownUpdate::writeRows(Part& part) {
  isCopied_.assign(part.toWrite() - part.first, true);
  for (next_ = part.toWrite(); next_ < rows_.size();) {
    const std::size_t place = next_++;
    const std::size_t written = place - part.first;
    cautions_.resize(std::max(cautions_.size(), written + 1));
    writer_->enter(placed(place), placed(place + 1), cautions_[written]);
    const bool isLong = written >= partRows_;
    MarkdownContext context = isLong ? writer_->context() : MarkdownContext();
    writer_->write();
    isCopied_.push_back(writer_->isCopied());
    while (change_ < changes_.size() && changes_[change_] <= place) ++change_;
    if (!canEnd()) continue;
    if (canCopyBehind(place)) return End::copy;
    if (!isLong || !writer_->beginsLine()) continue;
    nextPart_ = Part{place, writer_->lineBegin(), std::move(context), writer_->containers()};
    return End::part;
  }
  change_ = changes_.size();
  writer_->finish();
  return End::file;
}

/// False where what follows can change how rows of the part are read.
bool MarkdownUpdate::canEnd() const {
  const auto body = std::string_view(out_).substr(source_.head().bodyBegin);
  return !isOnePart_ && !(mayBecomeHead_ && body.starts_with(frontMatterMark));
}

bool MarkdownUpdate::canCopyBehind(std::size_t place) {
  const bool isChange = change_ > 0 && changes_[change_ - 1] == place;
  const bool isLast = change_ == changes_.size();
  return !isChange && (isLast || findStart()) && writer_->standsAsItStood();
}

/// The first row of the part that reads otherwise; none where all are read as they are.
std::optional<std::size_t> MarkdownUpdate::findMisread(const Part& part, End end) const {
  if (rows_.empty()) return std::nullopt;
  const auto text = std::string_view(out_).substr(part.begin);
  const std::vector<MarkdownRow> read =
      part.isHead ? readMarkdownText(part.context.lines + std::string(text), MarkdownScope::file).rows
                  : readMarkdownPart(text, part.context, source_.head().indentation);
  for (std::size_t place = part.first; place < next_; ++place) {
    const std::size_t at = part.containers + place - part.first;
    if (at >= read.size() || !readsAs(part, place, read[at])) return place;
  }
  const std::size_t last = part.containers + next_ - part.first - 1;
  if (read.size() > last + 1) return next_ - 1;
  if (end == End::file) return std::nullopt;
  std::size_t containers = 0;
  for (std::uint32_t at = read[last].container; at != MarkdownPlace::none; at = read[at].container)
    ++containers;
  const std::size_t begin = part.context.lines.size() + writer_->ownBegin() - part.begin;
  const bool isThere = read[last].span.begin == begin && containers == writer_->containers();
  return isThere ? std::nullopt : std::optional(next_ - 1);
}

bool MarkdownUpdate::readsAs(const Part& part, std::size_t place, const MarkdownRow& read) const {
  const Row& row = *rows_[place];
  if (read.depth + 1 != row.level() || read.span.begin < part.context.lines.size()) return false;
  if (says(row, read.content, Times::dropped)) return true;
  // A row has lost an id that an earlier one has, which may be in another part.
  if (!isCopied_[place - part.first] || !row.persistentId().empty()) return false;
  RowContent content = read.content;
  content.persistentId.clear();
  return says(row, content, Times::dropped);
}

/// Finds the row to be written more carefully because another is misread: one that is written anew, close
/// before it, rather than one that stands as it stood. False where there is none.
bool MarkdownUpdate::takeCare(const Part& part, std::size_t misread) {
  constexpr std::size_t farthest = 8;
  const std::size_t first = part.toWrite() - part.first;
  const std::size_t place = misread - part.first;
  for (std::size_t at = std::min(place + 2, isCopied_.size()); at-- > first && at + farthest >= place;) {
    if (isCopied_[at] || cautions_[at] > 0) continue;
    cautions_[at] = 1;
    return true;
  }
  for (std::size_t at = std::min(place + 1, isCopied_.size()); at-- > first && at + farthest >= place;) {
    if (cautions_[at] > 1) continue;
    ++cautions_[at];
    return true;
  }
  return false;
}

}  // namespace

void writeMarkdown(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  std::string header;
  if (!rowsOnly) DocumentHeader(HeaderKind::yaml).write(header, outline);
  if (!header.empty()) out.append("---\n").append(header).append("---\n");
  const MarkdownSource nothing;
  std::string text;
  MarkdownWriter writer(nothing, text, !header.empty());
  for (std::size_t at = 0; at < rows.size(); ++at) {
    writer.enter(rows[at], at + 1 < rows.size() ? rows[at + 1] : PlacedRow{nullptr, 0});
    writer.write();
  }
  writer.finish();
  out += text;
}

FileText updateMarkdown(const Outline& outline) { return updateMarkdown(outline, usualPartRows); }

FileText updateMarkdown(const Outline& outline, std::size_t partRows) {
  MarkdownUpdate update(outline, partRows);
  std::string text = update.write();
  return FileText(update.isMisread() ? MarkdownUpdate(outline, wholeFile).write() : std::move(text));
}

}  // namespace vell::formats

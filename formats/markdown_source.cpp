#include "formats/markdown_source.h"

#include <algorithm>

#include "formats/marked_line.h"

namespace vell::formats {
namespace {

/// The line without that prefix, as far as it has it.
std::string_view withoutPrefix(std::string_view line, std::string_view prefix) {
  for (const char c : prefix) {
    if (line.empty()) break;
    if (c == '>') {
      while (line.size() > 1 && line.front() == ' ') line.remove_prefix(1);
    }
    if (line.front() != c) break;
    line.remove_prefix(1);
  }
  return line;
}

std::string_view beforeOnLine(std::string_view text, std::size_t at) {
  const std::size_t end = text.substr(0, at).find_last_of("\r\n");
  const std::size_t begin = end == std::string_view::npos ? 0 : end + 1;
  return text.substr(begin, at - begin);
}

}  // namespace

void MarkdownNotes::add(std::string_view text, const MarkdownRow& row) {
  rows.push_back(row);
  const std::string_view own = text.substr(row.span.begin, row.span.end - row.span.begin);
  const bool isBulleted = row.form == MarkdownForm::item && ordinalLength(own) == 0;
  if (isBulleted && bullet == '\0') bullet = own.front();
  hasOpenFormula |= row.form == MarkdownForm::paragraph && opensFormula(own);
  if (row.container == MarkdownRow::none) return;
  const std::string_view before = beforeOnLine(text, row.span.begin);
  hasTabs |= before.find('\t') != std::string_view::npos;
  hasBlanks |= !before.empty() && before.front() != '\t' && before.front() != '>';
}

MarkdownSource::MarkdownSource() {
  static const MarkdownNotes nothing;
  notes_ = &nothing;
}

MarkdownSource::MarkdownSource(const Outline& outline)
    : outline_(&outline),
      text_(outline.source()->text()),
      notes_(dynamic_cast<const MarkdownNotes*>(outline.source()->notes())) {}

const MarkdownPlace* MarkdownSource::find(const Row& row) const {
  if (!outline_) return nullptr;
  const document::Source& source = *outline_->source();
  return source.find(row.id()) ? &notes_->rows[row.id() - source.firstRow()] : nullptr;
}

/// Its own lines tell, without those around them.
MarkdownRow MarkdownSource::readAgain(const Row& row, const MarkdownPlace& place) const {
  const std::string lines = reindented(own(place), prefix(place), "", "\n");
  std::vector<MarkdownRow> rows = readMarkdownPart(lines, {}, Indentation::code);
  MarkdownRow again;
  if (rows.size() == 1 && rows.front().form == place.form) again = std::move(rows.front());
  static_cast<MarkdownPlace&>(again) = place;
  again.span = span(place);
  if (const RowContent* original = this->original(row)) {
    again.content = *original;
  } else {
    again.content = {row.type(), row.text(), row.attributes(), row.persistentId()};
  }
  return again;
}

std::string_view MarkdownSource::behindLast() const {
  if (notes_->rows.empty()) return text_.substr(notes_->head.bodyBegin);
  return text_.substr(outline_->source()->spans().back().end);
}

std::string_view MarkdownSource::openFence(const MarkdownPlace& row) const {
  const std::string_view own = this->own(row);
  const std::string_view first = own.substr(0, own.find_first_of("\r\n"));
  const std::string_view fence = first.substr(0, openingFence(first));
  if (row.form != MarkdownForm::code || fence.empty()) return {};
  const std::string_view last = own.substr(own.find_last_of("\r\n") + 1);
  const std::size_t blanks = last.find_first_not_of(" \t>");
  const bool isClosed = last.size() < own.size() && blanks != std::string_view::npos &&
                        isClosingFence(last.substr(blanks), fence);
  return isClosed ? std::string_view() : fence;
}

std::size_t MarkdownSource::lineBegin(const MarkdownPlace& row) const {
  const std::size_t begin = span(row).begin;
  return std::max(begin - beforeOnLine(text_, begin).size(), notes_->head.bodyBegin);
}

std::string MarkdownSource::prefix(const MarkdownPlace& row) const {
  const std::size_t begin = lineBegin(row);
  std::string prefix(text_.substr(begin, span(row).begin - begin));
  for (char& c : prefix) {
    if (c != '\t' && c != '>') c = ' ';
  }
  return prefix;
}

std::optional<std::string> MarkdownSource::childPrefix(const MarkdownPlace& row) const {
  const std::size_t next = indexOf(row) + 1;
  if (next == rowCount() || notes_->rows[next].container != next - 1) return std::nullopt;
  std::string prefix = this->prefix(notes_->rows[next]);
  if (prefix.ends_with('>')) prefix += ' ';  // the mark would take in a blank of what follows it
  return prefix;
}

bool MarkdownSource::beginsLine(const MarkdownPlace& row) const {
  if (indexOf(row) > 0 && span(*(&row - 1)).end > lineBegin(row)) return false;
  if (isBareMark(row.form, own(row))) return false;
  std::string inner = prefix(row);
  for (const MarkdownPlace* place = &row; place->container != MarkdownPlace::none;) {
    place = &notes_->rows[place->container];
    const std::string outer = prefix(*place);
    if (!inner.starts_with(outer)) return false;
    inner = outer;
  }
  return inner.find_first_not_of(' ') == std::string::npos && inner.size() < 4;
}

std::vector<const MarkdownPlace*> MarkdownSource::containersOf(const MarkdownPlace& row) const {
  std::vector<const MarkdownPlace*> containers;
  for (std::uint32_t at = row.container; at != MarkdownPlace::none; at = containers.back()->container) {
    containers.push_back(&notes_->rows[at]);
  }
  std::reverse(containers.begin(), containers.end());
  return containers;
}

MarkdownNesting MarkdownSource::nestingBehind(const MarkdownPlace& row) const {
  const document::Source& source = *outline_->source();
  std::vector<const MarkdownPlace*> path;  // from the row up
  for (const MarkdownPlace* place = &row;;) {
    path.push_back(place);
    const SessionId parent = span(*place).parent;
    if (!source.find(parent)) break;
    place = &notes_->rows[parent - source.firstRow()];
  }
  const std::vector<const MarkdownPlace*> containers = containersOf(row);
  auto next = containers.begin();
  MarkdownNesting nesting;
  for (; !path.empty(); path.pop_back()) {
    const MarkdownPlace& place = *path.back();
    const std::uint32_t inside = next == containers.begin() ? MarkdownPlace::none : indexOf(**(next - 1));
    if (place.container == inside) nesting.place(place.depth, place.gathers ? place.level : 0);
    if (next == containers.end() || *next != &place) continue;
    nesting.enter(place.depth);
    ++next;
  }
  return nesting;
}

std::size_t MarkdownSource::lineEndsBefore(const MarkdownPlace& row) const {
  return indexOf(row) == 0 ? 0 : countLineEnds(between(*(&row - 1), row));
}

std::size_t MarkdownSource::lineEndsBehind(const MarkdownPlace& row) const {
  return isLast(row) ? 0 : countLineEnds(between(row, *(&row + 1)));
}

bool MarkdownSource::isInListWith(const MarkdownPlace& row, const MarkdownPlace& beside) const {
  if (row.form != MarkdownForm::item || beside.form != MarkdownForm::item) return false;
  if (row.container == indexOf(beside)) return true;
  const MarkdownPlace* sibling = &beside;
  while (sibling->container != row.container && sibling->container != MarkdownPlace::none) {
    sibling = &notes_->rows[sibling->container];
  }
  return sibling->container == row.container && listMark(own(row)) == listMark(own(*sibling));
}

std::size_t MarkdownSource::listGap(const MarkdownPlace& row) const {
  if (indexOf(row) > 0 && isInListWith(row, *(&row - 1)))
    return std::max<std::size_t>(lineEndsBefore(row), 1);
  if (!isLast(row) && isInListWith(row, *(&row + 1))) return std::max<std::size_t>(lineEndsBehind(row), 1);
  return 1;
}

bool MarkdownSource::areInOneList(const MarkdownPlace& row, const MarkdownPlace& later) const {
  if (!isInListWith(later, row)) return false;
  const auto isBetween = [&](const MarkdownPlace& place) {
    return place.container != later.container || isInListWith(later, place);
  };
  return &row < &later && std::all_of(&row, &later, isBetween);
}

std::string_view lineEndOf(std::string_view text) {
  const std::size_t end = text.find_first_of("\r\n");
  if (end == std::string_view::npos || text[end] == '\n') return "\n";
  return text.substr(end).starts_with("\r\n") ? "\r\n" : "\r";
}

char listMark(std::string_view item) {
  const std::size_t ordinal = ordinalLength(item);
  return item[std::max<std::size_t>(ordinal, 1) - 1];
}

bool isBareMark(MarkdownForm form, std::string_view own) {
  if (form == MarkdownForm::item) return own.size() == std::max<std::size_t>(ordinalLength(own), 1);
  return form == MarkdownForm::quote && own == ">";
}

std::size_t countLineEnds(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find_first_of("\r\n"); at < text.size(); at = text.find_first_of("\r\n", at)) {
    at += text.substr(at).starts_with("\r\n") ? 2 : 1;
    ++count;
  }
  return count;
}

std::string reindented(std::string_view lines, std::string_view oldPrefix, std::string_view newPrefix,
                       std::string_view lineEnd) {
  std::string out;
  for (std::size_t at = 0; at <= lines.size();) {
    const std::size_t end = std::min(lines.find_first_of("\r\n", at), lines.size());
    std::string_view line = lines.substr(at, end - at);
    if (at > 0) {
      line = withoutPrefix(line, oldPrefix);
      out += lineEnd;
      out += line.empty() ? withoutEndBlanks(newPrefix) : newPrefix;
    }
    out += line;
    at = end + (lines.substr(end).starts_with("\r\n") ? 2 : 1);
  }
  return out;
}

std::string_view withoutEndBlanks(std::string_view prefix) {
  while (!prefix.empty() && prefix.back() != '>') prefix.remove_suffix(1);
  return prefix;
}

}  // namespace vell::formats

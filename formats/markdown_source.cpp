#include "formats/markdown_source.h"

#include <algorithm>

#include "formats/marked_line.h"

namespace vell::formats {
namespace {

std::string_view lineEndOf(std::string_view text) {
  const std::size_t end = text.find_first_of("\r\n");
  if (end == std::string_view::npos || text[end] == '\n') return "\n";
  return text.substr(end).starts_with("\r\n") ? "\r\n" : "\r";
}

}  // namespace

MarkdownSource::MarkdownSource(const Outline& outline)
    : outline_(&outline),
      text_(outline.source()->text()),
      read_(readMarkdownText(text_, MarkdownScope::file)),
      lineEnd_(lineEndOf(text_)) {
  bool hasBullet = false;
  bool hasBlanks = false;
  bool hasTabs = false;
  for (const MarkdownRow& row : read_.rows) {
    const bool isBulleted = row.form == MarkdownForm::item && ordinalLength(own(row)) == 0;
    if (isBulleted && !hasBullet) bullet_ = own(row).front();
    hasBullet = hasBullet || isBulleted;
    if (row.container == MarkdownRow::none) continue;
    const std::string prefix = this->prefix(row);
    hasTabs = hasTabs || prefix.find('\t') != std::string::npos;
    hasBlanks = hasBlanks || prefix.starts_with(' ');
  }
  indentsByTabs_ = hasTabs || !hasBlanks;
}

const MarkdownRow* MarkdownSource::find(const Row& row) const {
  const SourceSpan* span = outline_ ? outline_->source()->find(row.id()) : nullptr;
  if (!span) return nullptr;
  // The rows of a source come in order, and so do their ids.
  std::size_t low = 0;
  for (std::size_t high = read_.rows.size(); low < high;) {
    const std::size_t middle = low + (high - low) / 2;
    const SourceSpan& other = read_.rows[middle].span;
    const bool isBefore = other.begin < span->begin || (other.begin == span->begin && other.end < span->end);
    (isBefore ? low : high) = isBefore ? middle + 1 : middle;
  }
  return low < read_.rows.size() ? &read_.rows[low] : nullptr;
}

bool MarkdownSource::isAsRead(const Row& row) const {
  return formats::isAsRead(*outline_, row, Times::dropped);
}

std::string_view MarkdownSource::openFence(const MarkdownRow& row) const {
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

std::string MarkdownSource::prefix(const MarkdownRow& row) const {
  const std::size_t end = row.span.begin;
  std::size_t begin = end;
  while (begin > read_.bodyBegin && text_[begin - 1] != '\n' && text_[begin - 1] != '\r') --begin;
  std::string prefix(text_.substr(begin, end - begin));
  for (char& c : prefix) {
    if (c != '\t' && c != '>') c = ' ';
  }
  return prefix;
}

std::optional<std::string> MarkdownSource::childPrefix(const MarkdownRow& row) const {
  const std::size_t next = indexOf(row) + 1;
  if (next == read_.rows.size() || read_.rows[next].container != next - 1) return std::nullopt;
  return prefix(read_.rows[next]);
}

std::size_t MarkdownSource::lineEndsBefore(const MarkdownRow& row) const {
  return indexOf(row) == 0 ? 0 : countLineEnds(between(*(&row - 1), row));
}

std::size_t MarkdownSource::lineEndsBehind(const MarkdownRow& row) const {
  return isLast(row) ? 0 : countLineEnds(between(row, *(&row + 1)));
}

bool MarkdownSource::isInListWith(const MarkdownRow& row, const MarkdownRow& beside) const {
  if (row.form != MarkdownForm::item || beside.form != MarkdownForm::item) return false;
  if (row.container == indexOf(beside)) return true;
  const MarkdownRow* sibling = &beside;
  while (sibling->container != row.container && sibling->container != MarkdownRow::none) {
    sibling = &read_.rows[sibling->container];
  }
  return sibling->container == row.container && listMark(own(row)) == listMark(own(*sibling));
}

std::size_t MarkdownSource::listGap(const MarkdownRow& row) const {
  if (indexOf(row) > 0 && isInListWith(row, *(&row - 1))) return lineEndsBefore(row);
  if (!isLast(row) && isInListWith(row, *(&row + 1))) return lineEndsBehind(row);
  return 1;
}

char listMark(std::string_view item) {
  const std::size_t ordinal = ordinalLength(item);
  return item[std::max<std::size_t>(ordinal, 1) - 1];
}

std::size_t countLineEnds(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find_first_of("\r\n"); at < text.size(); at = text.find_first_of("\r\n", at)) {
    at += text.substr(at).starts_with("\r\n") ? 2 : 1;
    ++count;
  }
  return count;
}

}  // namespace vell::formats

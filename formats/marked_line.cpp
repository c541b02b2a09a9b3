#include "formats/marked_line.h"

#include <algorithm>

#include "formats/inline_markdown.h"

namespace vell::formats {

std::string_view markAttribute(RowType type) {
  switch (type) {
    case RowType::task:
      return "done";
    case RowType::code:
      return "language";
    case RowType::heading:
      return "level";
    default:
      return {};
  }
}

void setMarkAttribute(RowContent& row, std::string_view value) {
  const std::string_view key = markAttribute(row.type);
  if (!row.attributes.find(key)) row.attributes.setFirst(key, value);
}

const std::string* markAttributeValue(const Row& row) {
  if (row.attributes().empty() || row.attributes().begin()->key != markAttribute(row.type())) return nullptr;
  return &row.attributes().begin()->value;
}

RowTrailer trailerOf(const Row& row, bool markTellsAttribute) {
  RowTrailer trailer;
  trailer.persistentId = row.persistentId();
  trailer.attributes = row.attributes();
  if (markTellsAttribute) trailer.attributes.remove(markAttribute(row.type()));
  return trailer;
}

bool canBeFenced(const Row& row) {
  const std::string& text = row.text().string();
  const auto isBad = [](char c) { return isControl(c) && c != '\n' && c != '\t'; };
  return row.text().isPlain() && std::none_of(text.begin(), text.end(), isBad);
}

bool isFenceInfo(std::string_view text) {
  const auto isBad = [](char c) { return isControl(c) || c == '`'; };
  return !text.empty() && trim(text) == text && !text.ends_with('}') &&
         std::none_of(text.begin(), text.end(), isBad);
}

std::string fenceFor(std::string_view text, char fence) {
  std::size_t longest = 2;
  for (std::size_t at = text.find(fence); at != std::string_view::npos; at = text.find(fence, at)) {
    const std::size_t length = runLength(text, at);
    longest = std::max(longest, length);
    at += length;
  }
  return std::string(longest + 1, fence);
}

void appendFenced(std::string& out, std::string_view text, std::string_view fence, std::size_t tabs) {
  for (std::size_t at = 0; at <= text.size() && !text.empty();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    if (end > at) out.append(tabs, '\t').append(text, at, end - at);
    out += '\n';
    at = end + 1;
  }
  out.append(tabs, '\t').append(fence) += '\n';
}

std::size_t openingFence(std::string_view line) {
  if (line.empty() || (line.front() != '`' && line.front() != '~')) return 0;
  const std::size_t length = runLength(line, 0);
  if (length < 3 || line.find('`', length) != std::string_view::npos) return 0;
  return length;
}

bool isClosingFence(std::string_view line, std::string_view opening) {
  line = trim(line);
  return line.size() >= opening.size() && line.front() == opening.front() &&
         runLength(line, 0) == line.size();
}

std::size_t ordinalLength(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
  const bool isOrdinal = digits > 0 && digits < 10 && digits < text.size();
  return isOrdinal && (text[digits] == '.' || text[digits] == ')') ? digits + 1 : 0;
}

}  // namespace vell::formats

#include "formats/attribute_list.h"

#include <algorithm>
#include <cstdint>

#include "formats/json_text.h"
#include "text/utf8.h"

namespace vell::formats {
namespace {

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte >= 0x80 || (c >= '0' && c <= '9')) return true;
  if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) return true;
  return std::string_view("_-.:/@+%,;?&~$").find(c) != std::string_view::npos;
}

bool isWord(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isWordByte);
}

void appendWord(std::string& out, std::string_view text) {
  if (isWord(text)) {
    out += text;
  } else {
    appendJsonString(out, text);
  }
}

std::optional<std::uint32_t> hexDigits(std::string_view text) {
  if (text.size() < 4) return std::nullopt;
  std::uint32_t value = 0;
  for (const char c : text.substr(0, 4)) {
    const std::size_t digit = std::string_view("0123456789abcdef").find(static_cast<char>(c | 0x20));
    if (digit == std::string_view::npos || (c < '0')) return std::nullopt;
    value = value * 16 + static_cast<std::uint32_t>(digit);
  }
  return value;
}

/// Decodes what follows "\u"; bytes taken, 0 where it is malformed.
std::size_t decodeUnicode(std::string_view text, std::string& out) {
  const auto first = hexDigits(text);
  if (!first || (*first >= 0xDC00 && *first <= 0xDFFF)) return 0;
  if (*first < 0xD800 || *first > 0xDBFF) return text::appendUtf8(out, *first), 4;
  if (text.substr(4, 2) != "\\u") return 0;
  const auto second = hexDigits(text.substr(6));
  if (!second || *second < 0xDC00 || *second > 0xDFFF) return 0;
  text::appendUtf8(out, 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00));
  return 10;
}

/// Decodes the escape behind a backslash; bytes taken, 0 where it is malformed.
std::size_t decodeEscape(std::string_view text, std::string& out) {
  constexpr std::string_view letters = "\"\\/bfnrt";
  constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
  if (text.empty()) return 0;
  if (text.front() == 'u') {
    const std::size_t taken = decodeUnicode(text.substr(1), out);
    return taken == 0 ? 0 : taken + 1;
  }
  const std::size_t which = letters.find(text.front());
  if (which == std::string_view::npos) return 0;
  out += meanings[which];
  return 1;
}

/// Decodes the literal at the front of `text`; bytes taken, 0 where there is none.
std::size_t decodeLiteral(std::string_view text, std::string& out) {
  if (!text.starts_with('"')) return 0;
  std::size_t at = 1;
  while (at < text.size() && text[at] != '"') {
    if (text[at] != '\\') {
      out += text[at++];
      continue;
    }
    const std::size_t taken = decodeEscape(text.substr(at + 1), out);
    if (taken == 0) return 0;
    at += taken + 1;
  }
  return at < text.size() ? at + 1 : 0;
}

}  // namespace

std::optional<std::string> takeJsonString(std::string_view& text) {
  std::string decoded;
  const std::size_t taken = decodeLiteral(text, decoded);
  if (taken == 0) return std::nullopt;
  text.remove_prefix(taken);
  return decoded;
}

void AttributeListReader::skipBlanks() {
  while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
}

bool AttributeListReader::open() {
  if (!text_.starts_with('{')) return false;
  at_ = 1;
  skipBlanks();
  return true;
}

bool AttributeListReader::close() {
  const std::size_t before = at_;
  skipBlanks();
  if (at_ < text_.size() && text_[at_] == '}') return ++at_, true;
  if (at_ == before) at_ = text_.size();  // no blank between items: nothing more can be read
  return false;
}

std::optional<ListItem> AttributeListReader::nextItem() {
  ListItem item;
  const bool isId = at_ < text_.size() && text_[at_] == '#';
  if (isId) {
    ++at_;
    item.key = "#";
  } else {
    item.quotedKey = at_ < text_.size() && text_[at_] == '"';
    auto key = word();
    if (!key || at_ >= text_.size() || text_[at_] != '=') return std::nullopt;
    ++at_;
    item.key = std::move(*key);
  }
  auto value = word();
  if (!value) return std::nullopt;
  item.value = std::move(*value);
  return item;
}

std::optional<std::string> AttributeListReader::word() {
  if (at_ < text_.size() && text_[at_] == '"') return quoted();
  const std::size_t start = at_;
  while (at_ < text_.size() && isWordByte(text_[at_])) ++at_;
  if (at_ == start) return std::nullopt;
  return std::string(text_.substr(start, at_ - start));
}

std::optional<std::string> AttributeListReader::quoted() {
  std::string decoded;
  const std::size_t taken = decodeLiteral(text_.substr(at_), decoded);
  if (taken == 0) return std::nullopt;
  at_ += taken;
  return decoded;
}

void appendListItem(std::string& out, std::string_view key, std::string_view value,
                    std::string_view reserved) {
  const bool isReserved =
      isWord(key) && reserved.find(" " + std::string(key) + " ") != std::string_view::npos;
  if (isReserved) {
    appendJsonString(out, key);
  } else {
    appendWord(out, key);
  }
  out += '=';
  appendWord(out, value);
}

void appendListId(std::string& out, std::string_view id) {
  out += '#';
  appendWord(out, id);
}

}  // namespace vell::formats

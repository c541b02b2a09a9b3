#include "formats/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <pugixml.hpp>
#include <utility>

#include "text/utf8.h"

namespace vell::formats {
namespace {

constexpr std::string_view blanks = " \t\r\n";

struct Range {
  char32_t first, last;
};

// XML 1.0, productions 4 and 4a, without the colon.
constexpr Range nameStarts[] = {
    {'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},
    {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
    {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
constexpr Range nameOthers[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <std::size_t size>
bool isIn(const Range (&ranges)[size], char32_t c) {
  return std::any_of(ranges, ranges + size, [c](Range range) { return range.first <= c && c <= range.last; });
}

void appendReference(std::string& out, char32_t c) {
  out.append("&#").append(std::to_string(static_cast<std::uint32_t>(c))).append(";");
}

/// A reference to an entity of the document at the front of the text, where it stands in `before` too.
std::string_view ownReference(std::string_view text, std::string_view before) {
  constexpr std::string_view predefined[] = {"amp", "lt", "gt", "quot", "apos"};
  const std::size_t end = text.find_first_of("&; ", 1);
  if (before.empty() || end == text.npos || text[end] != ';') return {};
  const std::string_view name = text.substr(1, end - 1);
  const std::string_view reference = text.substr(0, end + 1);
  const bool isPredefined = std::count(std::begin(predefined), std::end(predefined), name) > 0;
  return !isPredefined && isXmlName(name) && before.find(reference) != before.npos ? reference
                                                                                   : std::string_view();
}

bool isXmlCharacter(char32_t c) { return c >= 0x20 && c != 0xFFFE && c != 0xFFFF; }

/// Appends the character that the text begins with; returns the bytes it takes there.
std::size_t appendSpecial(std::string& out, std::string_view text, const XmlStyle& style) {
  const text::CodePoint next = text::firstCodePoint(text);
  const char32_t c = next.value;
  std::size_t taken = next.length;
  if (c == '\t' || c == '\n' || c == '\r') {
    appendReference(out, c);
  } else if (c == '&') {
    const std::string_view reference = ownReference(text, style.before);
    out += reference.empty() ? "&amp;" : reference;
    taken = std::max(taken, reference.size());
  } else if (c == '<') {
    out += "&lt;";
  } else if (c == '>') {
    out += "&gt;";
  } else if (c == static_cast<char32_t>(style.quote)) {
    out += style.quote == '"' ? "&quot;" : "&apos;";
  } else if (!isXmlCharacter(c)) {
    text::appendUtf8(out, 0xFFFD);
  } else if (c > 0x7F && style.isAscii) {
    appendReference(out, c);
  } else {
    out += text.substr(0, taken);
  }
  return taken;
}

}  // namespace

void appendXml(std::string& out, std::string_view text, const XmlStyle& style) {
  const auto isPlain = [&](char c) {
    return c >= ' ' && c != '&' && c != '<' && c != '>' && c != style.quote &&
           static_cast<unsigned char>(c) < 0x80;
  };
  while (!text.empty()) {
    const auto plainEnd = std::find_if_not(text.begin(), text.end(), isPlain);
    const auto plain = static_cast<std::size_t>(plainEnd - text.begin());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(appendSpecial(out, text, style));
  }
}

bool isXmlName(std::string_view name) {
  for (bool isFirst = true; !name.empty(); isFirst = false) {
    const text::CodePoint next = text::firstCodePoint(name);
    if (!isIn(nameStarts, next.value) && (isFirst || !isIn(nameOthers, next.value))) return false;
    name.remove_prefix(next.length);
    if (name.empty()) return true;
  }
  return false;
}

std::size_t xmlTagLength(std::string_view text) {
  std::size_t at = 0;
  while ((at = text.find_first_of(">\"'", at)) != text.npos && text[at] != '>') {
    at = text.find(text[at], at + 1);
    if (at != text.npos) ++at;
  }
  return at == text.npos ? text.size() : at + 1;
}

const unsigned xmlValues = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_ws_pcdata;

std::string xmlValue(const char* read) {
  return text::findInvalidUtf8(read) ? text::replaceInvalidUtf8(read) : read;
}

XmlTag::XmlTag(std::string_view tag, bool isAscii) : isAscii_(isAscii) {
  scan(tag);
  decode(tag);
}

void XmlTag::scan(std::string_view tag) {
  std::size_t at = 0;
  const auto take = [&](std::size_t end) {
    const std::size_t begin = std::exchange(at, std::min(end, tag.size()));
    return tag.substr(begin, at - begin);
  };
  const auto takeBlanks = [&] { return take(tag.find_first_not_of(blanks, at)); };
  start_ = take(tag.find_first_of(" \t\r\n/>"));
  while (at < tag.size()) {
    blanks_ = takeBlanks();
    if (at == tag.size() || tag[at] == '/' || tag[at] == '>') break;
    Part part{.blanks = blanks_,
              .name = take(tag.find_first_of(" \t\r\n=", at)),
              .assigned = {},
              .quoted = {},
              .value = {}};
    part.assigned = take(tag.find_first_of("\"'", at));
    part.quoted = take(at < tag.size() ? tag.find(tag[at], at + 1) + 1 : at);
    attributes_.push_back(std::move(part));
  }
  closesItself_ = at < tag.size() && tag[at] == '/';
}

void XmlTag::decode(std::string_view tag) {
  std::string element(tag);
  if (!closesItself_) element.insert(element.size() - 1, "/");
  pugi::xml_document document;
  document.load_buffer(element.data(), element.size(), xmlValues, pugi::encoding_utf8);
  auto part = attributes_.begin();
  for (const pugi::xml_attribute attribute : document.first_child().attributes()) {
    if (part != attributes_.end()) part++->value = xmlValue(attribute.value());
  }
}

void XmlTag::set(std::size_t index, const std::string& value) {
  if (attributes_[index].value != value) attributes_[index].now = value;
}

void XmlTag::append(std::string_view name, std::string_view value) { added_.emplace_back(name, value); }

std::optional<std::size_t> XmlTag::find(std::string_view name) const {
  for (std::size_t index = size(); index-- > 0;) {
    if (this->name(index) == name && !attributes_[index].isRemoved) return index;
  }
  return std::nullopt;
}

void XmlTag::set(std::string_view name, const std::string& value) {
  if (const auto index = find(name)) return set(*index, value);
  append(name, value);
}

void XmlTag::remove(std::string_view name) {
  while (const auto index = find(name)) remove(*index);
}

std::string XmlTag::text(bool opens) const {
  std::string out(start_);
  for (const Part& part : attributes_) {
    if (part.isRemoved) continue;
    out.append(part.blanks).append(part.name).append(part.assigned);
    if (!part.now) {
      out += part.quoted;
      continue;
    }
    const char quote = part.quoted.front();
    out += quote;
    appendXml(out, *part.now, {quote, isAscii_, part.quoted});
    out += quote;
  }
  const char quote = attributes_.empty() ? '"' : attributes_.back().quoted.front();
  const std::string_view gap = attributes_.empty() ? " " : attributes_.back().blanks;
  for (const auto& [name, value] : added_) {
    out.append(gap).append(name).append("=") += quote;
    appendXml(out, value, {quote, isAscii_});
    out += quote;
  }
  if (!closesItself_ || !opens) out.append(blanks_).append(closesItself_ ? "/" : "");
  return out + ">";
}

}  // namespace vell::formats

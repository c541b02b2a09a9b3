#include "formats/attribute_list.h"

#include <algorithm>

#include "formats/inline_markdown.h"
#include "json/document.h"
#include "json/error.h"
#include "json/writer.h"

namespace vell::formats {
namespace {

bool isBareByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte >= 0x80 || (c >= '0' && c <= '9')) return true;
  if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) return true;
  return std::string_view("_-.:/@+%,;?&~$").find(c) != std::string_view::npos;
}

bool isBareWord(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isBareByte);
}

void appendWord(std::string& out, std::string_view text) {
  if (isBareWord(text)) {
    out += text;
  } else {
    json::appendString(text, out);
  }
}

/// Bytes of the JSON string at the front of `text`, its quotes included; 0 where there is none.
std::size_t literalLength(std::string_view text) {
  if (!text.starts_with('"')) return 0;
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] == '"') return at + 1;
    if (text[at] == '\\') ++at;
  }
  return 0;
}

}  // namespace

std::optional<std::string> takeJsonString(std::string_view& text) {
  const std::string_view literal = text.substr(0, literalLength(text));
  if (literal.empty()) return std::nullopt;
  std::optional<std::string> decoded(literal.substr(1, literal.size() - 2));
  if (decoded->find('\\') != std::string::npos) {
    try {
      decoded = json::Document(literal).root().string();
    } catch (const json::ParseError&) {
      return std::nullopt;
    }
  }
  text.remove_prefix(literal.size());
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
  if (at_ < text_.size() && text_[at_] == '"') {
    std::string_view rest = text_.substr(at_);
    auto decoded = takeJsonString(rest);
    at_ = text_.size() - rest.size();
    return decoded;
  }
  const std::size_t start = at_;
  while (at_ < text_.size() && isBareByte(text_[at_])) ++at_;
  if (at_ == start) return std::nullopt;
  return std::string(text_.substr(start, at_ - start));
}

void appendListItem(std::string& out, std::string_view key, std::string_view value,
                    std::string_view reserved) {
  const bool isReserved =
      isBareWord(key) && reserved.find(" " + std::string(key) + " ") != std::string_view::npos;
  if (isReserved) {
    json::appendString(key, out);
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

namespace {

bool isDecimal(std::string_view text) {
  return !text.empty() && text.size() < 10 && text.find_first_not_of("0123456789") == std::string_view::npos;
}

void takeItem(RowTrailer& trailer, ListItem item, Times times) {
  if (!item.quotedKey) {
    if (item.key == "#") return void(trailer.persistentId = std::move(item.value));
    if (item.key == "type") {
      trailer.type = document::rowType(item.value);
      if (trailer.type) return;
    }
    const bool isDepth = times == Times::dropped && item.key == "depth" && isDecimal(item.value);
    if (isDepth) return void(trailer.depth = std::stoul(item.value));
    if (times == Times::kept && item.key == "created") return void(trailer.created = std::move(item.value));
    if (times == Times::kept && item.key == "modified") return void(trailer.modified = std::move(item.value));
  }
  trailer.attributes.set(item.key, item.value);
}

bool readTrailer(std::string_view list, Times times, RowTrailer& trailer) {
  AttributeListReader reader(list);
  const bool isList = reader.read([&](ListItem item) { takeItem(trailer, std::move(item), times); });
  return isList && reader.length() == list.size();
}

}  // namespace

bool takeTrailer(std::string_view& line, Times times, RowTrailer& trailer) {
  const std::string_view whole = trimEnd(line);
  if (!whole.ends_with('}')) return false;
  for (std::size_t at = whole.rfind('{'); at != std::string_view::npos; at = whole.rfind('{', at - 1)) {
    RowTrailer read;
    if ((at == 0 || isBlank(whole[at - 1])) && readTrailer(whole.substr(at), times, read)) {
      trailer = std::move(read);
      line = trimEnd(whole.substr(0, at));
      return true;
    }
    if (at == 0) break;
  }
  return false;
}

void appendTrailer(std::string& out, Times times, const RowTrailer& trailer) {
  if (trailer.empty()) return;
  const std::string_view reserved = times == Times::kept ? " type created modified " : " type depth ";
  char before = '{';
  const auto separate = [&] {
    out += before;
    before = ' ';
  };
  if (!trailer.persistentId.empty()) separate(), appendListId(out, trailer.persistentId);
  if (trailer.type) separate(), appendListItem(out, "type", name(*trailer.type));
  if (trailer.depth) separate(), appendListItem(out, "depth", std::to_string(*trailer.depth));
  for (const Attribute& entry : trailer.attributes) {
    separate();
    appendListItem(out, entry.key, entry.value, reserved);
  }
  if (!trailer.created.empty()) separate(), appendListItem(out, "created", trailer.created);
  if (!trailer.modified.empty()) separate(), appendListItem(out, "modified", trailer.modified);
  out += '}';
}

}  // namespace vell::formats

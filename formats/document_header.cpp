#include "formats/document_header.h"

#include <algorithm>
#include <optional>

#include "formats/attribute_list.h"
#include "formats/inline_markdown.h"
#include "json/writer.h"

namespace vell::formats {
namespace {

bool isPlainKey(std::string_view key) {
  const auto isKeyByte = [](char c) { return isWordByte(c) || c == '_' || c == '-' || c == '.'; };
  return !key.empty() && key.front() != '-' && std::all_of(key.begin(), key.end(), isKeyByte);
}

bool continuesValue(std::string_view line) {
  return line.empty() || isBlank(line.front()) || (line.front() == '-' && line != "---") ||
         line.front() == '#';
}

std::optional<std::string> wholeJsonString(std::string_view text) {
  auto decoded = takeJsonString(text);
  if (!text.empty()) decoded.reset();
  return decoded;
}

/// True if the value comes back from reading the line `key: value`.
bool isPlainValue(std::string_view value) {
  const std::size_t feed = std::min(value.find('\n'), value.size());
  const std::string_view first = value.substr(0, feed);
  if (value.empty() || trim(first) != first || wholeJsonString(value)) return false;
  for (const char c : value) {
    if (isControl(c) && c != '\n' && c != '\t') return false;
  }
  for (std::size_t at = feed; at < value.size();) {
    const std::size_t end = std::min(value.find('\n', at + 1), value.size());
    const std::string_view line = value.substr(at + 1, end - at - 1);
    if (trim(line).empty() || !continuesValue(line)) return false;  // a blank line can end a header
    at = end;
  }
  return true;
}

/// What stands behind the colon.
void writeValue(std::string& out, std::string_view value) {
  if (!isPlainValue(value)) {
    out += ' ';
    json::appendString(value, out);
  } else {
    if (!value.starts_with('\n')) out += ' ';
    out += value;
  }
  out += '\n';
}

}  // namespace

bool DocumentHeader::readLine(std::string_view line) {
  if (!lines_.empty() && continuesValue(line)) {
    lines_.back().value.append("\n").append(line);
    return true;
  }
  std::string_view rest = line;
  const auto quoted = takeJsonString(rest);
  std::string key;
  if (quoted) {
    key = *quoted;
  } else {
    std::size_t colon = rest.find(':');
    while (colon != std::string_view::npos && colon + 1 < rest.size() && !isBlank(rest[colon + 1])) {
      colon = rest.find(':', colon + 1);
    }
    if (colon == std::string_view::npos || colon == 0 || continuesValue(line)) return false;
    key = rest.substr(0, colon);
    rest.remove_prefix(colon);
  }
  if (!rest.starts_with(':')) return false;
  lines_.push_back({std::move(key), std::string(trim(rest.substr(1))), quoted.has_value()});
  return true;
}

bool DocumentHeader::finish(Outline& outline) const {
  Attributes frontMatter;
  bool timesAreGood = true;
  for (const Line& line : lines_) {
    const std::string value = wholeJsonString(line.value).value_or(line.value);
    if (line.quotedKey || !isReserved(line.key)) {
      frontMatter.set(line.key, value);
    } else if (line.key == "id") {
      outline.setPersistentId(value);
    } else {
      const auto time = document::parseTimestamp(value);
      timesAreGood = timesAreGood && time;
      outline.setCreated(time.value_or(0));
    }
  }
  outline.setFrontMatter(std::move(frontMatter));
  return timesAreGood;
}

void DocumentHeader::write(std::string& out, const Outline& outline) const {
  if (!outline.persistentId().empty()) {
    out += "id:";
    writeValue(out, outline.persistentId());
  }
  if (keepsTimes_) {
    out += "created:";
    writeValue(out, document::formatTimestamp(outline.created()));
  }
  for (const Attribute& entry : outline.frontMatter()) {
    if (isPlainKey(entry.key) && !isReserved(entry.key)) {
      out += entry.key;
    } else {
      json::appendString(entry.key, out);
    }
    out += ':';
    writeValue(out, entry.value);
  }
}

}  // namespace vell::formats

#include "formats/document_header.h"

#include <algorithm>
#include <optional>

#include "formats/attribute_list.h"
#include "formats/inline_markdown.h"
#include "json/writer.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

bool isPlainKey(std::string_view key) {
  const auto isKeyByte = [](char c) { return isWordByte(c) || c == '_' || c == '-' || c == '.'; };
  return !key.empty() && key.front() != '-' && std::all_of(key.begin(), key.end(), isKeyByte);
}

bool continuesValue(std::string_view line) {
  return line.empty() || isBlank(line.front()) || (line.front() == '-' && line != "---") ||
         line.front() == '#' || line.front() == '}' || line.front() == ']';
}

bool isComment(std::string_view line) { return line.starts_with('#') || trim(line).empty(); }

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

/// What stands behind the colon and the blank.
std::string valueText(std::string_view value) {
  if (isPlainValue(value)) return std::string(value);
  std::string quoted;
  json::appendString(value, quoted);
  return quoted;
}

void writeValue(std::string& out, std::string_view value) {
  const std::string text = valueText(value);
  if (!text.starts_with('\n')) out += ' ';
  out += text;
  out += '\n';
}

}  // namespace

std::optional<DocumentHeader::Line> DocumentHeader::keyLine(std::string_view line) {
  std::string_view rest = line;
  Line read;
  if (auto quoted = takeJsonString(rest)) {
    read.key = std::move(*quoted);
    read.quotedKey = true;
  } else {
    std::size_t colon = rest.find(':');
    while (colon != std::string_view::npos && colon + 1 < rest.size() && !isBlank(rest[colon + 1])) {
      colon = rest.find(':', colon + 1);
    }
    if (colon == std::string_view::npos || colon == 0 || continuesValue(line)) return std::nullopt;
    read.key = rest.substr(0, colon);
    rest.remove_prefix(colon);
  }
  if (!rest.starts_with(':')) return std::nullopt;
  read.value = trim(rest.substr(1));
  read.keyLength = line.size() - rest.size() + 1;
  return read;
}

bool DocumentHeader::readLine(std::string_view line) {
  const bool continues = !lines_.empty() && continuesValue(line);
  if (auto read = continues ? std::nullopt : keyLine(line)) {
    lines_.push_back(std::move(*read));
    return true;
  }
  if (lines_.empty()) return line.starts_with('#');
  if (continues || !isVell()) lines_.back().value.append("\n").append(line);
  return continues || !isVell();
}

bool DocumentHeader::finish(Outline& outline) const {
  Attributes frontMatter;
  bool timesAreGood = true;
  for (const Line& line : lines_) {
    const std::string value = wholeJsonString(line.value).value_or(line.value);
    if (!isReserved(line)) {
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

/// Appends with the line ends of the file.
static void appendLines(std::string& out, std::string_view text, std::string_view lineEnd) {
  for (const char c : text) c == '\n' ? out += lineEnd : out += c;
}

/// What the key stands for; null where that is nothing that can change.
const std::string* DocumentHeader::valueIn(const Line& line, const std::string& id,
                                           const Attributes& frontMatter) const {
  if (line.keyLength == 0) return nullptr;
  if (!isReserved(line)) return frontMatter.find(line.key);
  return line.key == "id" ? &id : nullptr;
}

static void appendKey(std::string& out, std::string_view key, bool isReserved) {
  if (isPlainKey(key) && !isReserved) {
    out += key;
  } else {
    json::appendString(key, out);
  }
  out += ':';
}

void DocumentHeader::write(std::string& out, const Outline& outline) const {
  if (!outline.persistentId().empty()) {
    out += "id:";
    writeValue(out, outline.persistentId());
  }
  if (isVell()) {
    out += "created:";
    writeValue(out, document::formatTimestamp(outline.created()));
  }
  for (const Attribute& entry : outline.frontMatter()) {
    appendKey(out, entry.key, isReserved(entry.key));
    writeValue(out, entry.value);
  }
}

std::vector<DocumentHeader::Entry> DocumentHeader::takeApart(std::string_view lines) const {
  DocumentHeader header(kind_);
  std::vector<Entry> entries;
  text::Lines reader(lines);
  while (reader.next()) {
    const std::string_view line = reader.line();
    const std::size_t count = header.lines_.size();
    header.readLine(line);
    const bool isKey = header.lines_.size() > count;
    if (isKey || entries.empty()) {
      Entry entry{.line = isKey ? header.lines_.back() : Line(), .begin = reader.offset()};
      const std::size_t behindColon =
          std::min(line.find_first_not_of(" \t", entry.line.keyLength), line.size());
      entry.valueFrom = entry.valueTo = entry.begin + behindColon;
      entries.push_back(std::move(entry));
    }
    Entry& entry = entries.back();
    if (isKey || !isComment(line)) entry.valueTo = reader.offset() + line.size();
    entry.end = std::min(lines.find('\n', reader.offset()), lines.size() - 1) + 1;
  }
  return entries;
}

bool DocumentHeader::tells(std::string_view lines, std::string_view key) const {
  const std::vector<Entry> entries = takeApart(lines);
  return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
    return entry.line.key == key && isReserved(entry.line) == isReserved(key);
  });
}

/// The value as it is written over another one; YAML reads what stands in markdown.
std::string DocumentHeader::valueOver(std::string_view before, std::string_view value) const {
  const bool wasLines = before.starts_with('\n') || before.starts_with("\r\n");
  const bool bothAreLines = wasLines && value.starts_with('\n');
  return isVell() || (bothAreLines && isPlainValue(value)) ? valueText(value) : yamlValue(value, before);
}

std::string DocumentHeader::update(std::string_view lines, const Outline& outline) const {
  const document::DocumentContent& read = outline.source()->document();
  const std::string_view lineEnd = text::lineEndOf(outline.source()->text());
  std::string out;
  const std::vector<Entry> entries = takeApart(lines);
  for (std::size_t index = 0; index < entries.size(); ++index) {
    const Entry& entry = entries[index];
    const auto isSameKey = [&](const Entry& other) {
      return other.line.key == entry.line.key && isReserved(other.line) == isReserved(entry.line);
    };
    const auto isLast = [&] {
      return std::none_of(entries.begin() + static_cast<std::ptrdiff_t>(index) + 1, entries.end(), isSameKey);
    };
    const std::string* was = valueIn(entry.line, read.persistentId, read.frontMatter);
    const std::string* now = valueIn(entry.line, outline.persistentId(), outline.frontMatter());
    if (was && !now) {  // what follows its value stays
      const std::size_t to = std::min(lines.find('\n', entry.valueTo), entry.end - 1) + 1;
      out += lines.substr(to, entry.end - to);
    } else if (!was || *was == *now || !isLast()) {
      out += lines.substr(entry.begin, entry.end - entry.begin);
    } else {
      const std::string_view before = lines.substr(entry.valueFrom, entry.valueTo - entry.valueFrom);
      const std::string value = valueOver(before, *now);
      out += lines.substr(entry.begin, entry.valueFrom - entry.begin);
      if (out.ends_with(':') && !value.starts_with('\n')) out += ' ';
      appendLines(out, value, lineEnd);
      out += lines.substr(entry.valueTo, entry.end - entry.valueTo);
    }
  }
  for (const Attribute& entry : outline.frontMatter()) {
    if (read.frontMatter.find(entry.key)) continue;
    if (!out.empty() && !out.ends_with('\n')) out += lineEnd;
    appendKey(out, entry.key, isReserved(entry.key));
    const std::string value = valueOver("", entry.value);
    if (!value.starts_with('\n')) out += ' ';
    appendLines(out, value, lineEnd);
    out += lineEnd;
  }
  return out;
}

}  // namespace vell::formats

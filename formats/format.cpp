#include "formats/format.h"

#include <algorithm>
#include <array>
#include <memory>

#include "text/lines.h"
#include "text/utf8.h"

namespace vell::formats {
namespace {

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

FileText written(const Format& format, const Outline& outline) {
  std::string text;
  format.write(outline, placeAll(outline), false, text);
  return FileText(std::move(text));
}

}  // namespace

FormatError::FormatError(const std::string& fault, std::size_t line, std::size_t offset)
    : std::runtime_error("line " + std::to_string(line) + " (byte " + std::to_string(offset) +
                         "): " + fault) {}

std::string_view checkedSource(std::string_view text) {
  if (const auto invalid = text::findInvalidUtf8(text)) {
    throw FormatError("not valid UTF-8; save the file as UTF-8", text::lineNumber(text, *invalid), *invalid);
  }
  if (text.starts_with(text::byteOrderMark)) text.remove_prefix(text::byteOrderMark.size());
  return text;
}

std::span<const Format> formats() {
  // clang-format off
  static const std::array table = {
      Format{"session",  {},                 nullptr,      writeSession,  nullptr, true},
      Format{"json",     {"json"},           readJson,     writeJson,     updateJson, true},
      Format{"markdown", {"md", "markdown"}, readMarkdown, writeMarkdown, updateMarkdown, false},
      Format{"vell",     {"vell"},           readVell,     writeVell,     updateVell, false},
      Format{"opml",     {"opml"},           readOpml,     writeOpml,     updateOpml, false},
      Format{"txt",      {"txt"},            readTxt,      writeTxt,      updateTxt, false},
  };
  // clang-format on
  return table;
}

const Format* formatNamed(std::string_view name) {
  for (const Format& format : formats()) {
    if (format.name == name) return &format;
  }
  return nullptr;
}

const Format* formatForFile(std::string_view path) {
  const std::size_t dot = path.find_last_of("./");
  if (dot == std::string_view::npos || path[dot] != '.') return nullptr;
  const std::string extension = lower(path.substr(dot + 1));
  for (const Format& format : formats()) {
    if (std::count(format.extensions.begin(), format.extensions.end(), extension) > 0) return &format;
  }
  return nullptr;
}

void readFile(const Format& format, std::string text, const ReadOptions& options, Outline& outline) {
  auto kept = std::make_unique<document::Source>(format.name, std::move(text));
  document::Source& source = *kept;
  outline.setSource(std::move(kept));
  format.read(source.text(), options, outline);
  source.setDocument({outline.persistentId(), outline.frontMatter(), outline.created()});
}

FileText fileText(const Format& format, const Outline& outline) {
  const document::Source* source = outline.source();
  const bool updates = format.update && source && source->format() == format.name;
  FileText text = updates ? format.update(outline) : written(format, outline);
  // A text that begins with the character of the byte order mark would lose it without a mark before it.
  const bool isMarked = updates && source->text().starts_with(text::byteOrderMark);
  if (isMarked || !text.startsWith(text::byteOrderMark)) return text;
  return FileText(std::string(text::byteOrderMark) + text.string());
}

}  // namespace vell::formats

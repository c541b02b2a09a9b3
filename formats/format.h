#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "formats/file_text.h"
#include "formats/rows.h"

namespace vell::formats {

/// A text that is not of its format. `what()` names the line, the byte offset and the fault.
class FormatError : public std::runtime_error {
 public:
  /// Lines count from 1, bytes from 0.
  FormatError(const std::string& fault, std::size_t line, std::size_t offset);
};

struct ReadOptions {
  /// The time of everything that the text gives no time for: when the file was last changed, or now.
  Timestamp time = 0;
  /// Called with every row, if not null; what it throws ends the reading.
  void (*eachRow)() = nullptr;
};

/// Fills an empty outline. Throws FormatError; the outline is then of no use.
using Reader = void(std::string_view text, const ReadOptions& options, Outline& outline);
/// Appends the document, or with `rowsOnly` the rows without what surrounds them.
using Writer = void(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);

/// The text of a file that was read with `readFile` into this outline, as it is to be now: what did not
/// change is copied from the outline's source.
using Updater = FileText(const Outline& outline);

struct Format {
  std::string_view name;
  std::vector<std::string_view> extensions;  ///< lower case, without the dot, the usual one first
  Reader* read;                              ///< null where the format is only written
  Writer* write;
  Updater* update;  ///< null where all rows are written anew
  bool isJson;      ///< what is written is a JSON value; else it is text
};

/// Every format, in the order in which they are told to people:
///   const Format* format = formatForFile(path);        // by extension
///   format->read(bytes, {mtime}, outline);
///   std::string answer;
///   formatNamed("session")->write(outline, placeAll(outline), false, answer);
std::span<const Format> formats();
/// Null where there is none of that name.
const Format* formatNamed(std::string_view name);
/// By the file name's extension, letter case ignored; null where it is none of ours.
const Format* formatForFile(std::string_view path);

/// Reads a file: the outline keeps the text as its source. Throws FormatError.
void readFile(const Format& format, std::string text, const ReadOptions& options, Outline& outline);
/// The text of a file that holds the outline. Rows that are as they were read from a file of this format are
/// copied from there with what stands between them.
FileText fileText(const Format& format, const Outline& outline);

/// Like readMarkdown for text that is to become part of an outline: no front matter, and the number of "#" of
/// a heading says how headings nest but is not kept.
Reader readMarkdownRows;

// What each format's own file defines for the table. docs/formats.md describes them.
Reader readJson, readMarkdown, readVell, readOpml, readTxt;
Writer writeSession, writeJson, writeMarkdown, writeVell, writeOpml, writeTxt;
Updater updateMarkdown, updateJson, updateVell, updateOpml, updateTxt;

/// For readers: `text` without a byte order mark. Throws FormatError where it is not UTF-8.
std::string_view checkedSource(std::string_view text);

}  // namespace vell::formats

#include "tests/formats/support.h"

#include <iterator>

#include "formats/json_format.h"

namespace vell::formats {
namespace {

constexpr Timestamp someTime = 1'790'000'000'000;

// clang-format off
constexpr std::string_view scraps[] = {
    "word", "two words", "snake_case", "**", "*", "_", "__", "***", "~~", "~", "~~~", "==", "=", "`", "``",
    "```", "[", "]", "(", ")", "](u)", "{", "}", "{#x}", " {#x}", "{a=b}", " {k=\"v\"}", "- ", "-", "+ ",
    "# ", "## ", "1. ", "2) ", "> ", "[ ] ", "[x]", "[!NOTE] ", "//", "// ", "---", "***", "<br>", "\\",
    "&#10;", "&amp;", "<", "\"", "'", "|", "\xF0\x9F\x98\x80", "\xC3\xA9", "\xC2\xA0", " ", "  ", "\t",
    "vell 1", "id: x", "!", ":", "\x7F",
};
// clang-format on

constexpr std::string_view controls[] = {"\n", "\r\n", "\r", std::string_view("\0", 1), "\x01", "\x1B"};

constexpr std::string_view keys[] = {"done", "color", "type", "created", "level",  "language", "#",
                                     "",     "a b",   "id",   "text",    "vell-x", "\xC3\xA9", "k\"ey"};
constexpr std::string_view styles[] = {"strong", "em", "code", "s", "mark", "a", "base", "my-key", "", "#"};
constexpr std::string_view values[] = {"",         "true", "2", "sub", "https://vell.app/x?y=1&z",
                                       "dark red", "a)b(", "}"};

}  // namespace

std::string OutlineGenerator::text() {
  std::string text;
  for (std::size_t count = below(6); count > 0; --count) {
    const std::string_view control = controls[below(std::size(controls))];
    const bool isLineEnd = control.find_first_of("\r\n") != std::string_view::npos;
    if (oneIn(12) && (isLineEnd ? holds_.lineEnds : holds_.controls)) text += control;
    text += scraps[below(std::size(scraps))];
  }
  return text;
}

Text OutlineGenerator::styledText() {
  if (!holds_.styles) {  // tabs at the front are depth in plain text
    const std::string plain = text();
    return Text(plain.substr(std::min(plain.find_first_not_of('\t'), plain.size())));
  }
  if (!oneIn(3)) return Text(text());
  Text styled;
  for (std::size_t count = below(5); count > 0; --count) {
    Attributes attrs;
    for (std::size_t marks = below(3); marks > 0; --marks) {
      const std::string_view key = styles[below(std::size(styles))];
      attrs.set(key, oneIn(4) || key == "a" ? values[below(std::size(values))] : "");
    }
    styled.append(oneIn(2) ? "word" : text(), std::move(attrs));
  }
  return styled;
}

Attributes OutlineGenerator::attributes(std::string_view first) {
  Attributes attributes;
  if (oneIn(3)) attributes.set(first, values[below(std::size(values))]);
  while (oneIn(3))
    attributes.set(keys[below(std::size(keys))], oneIn(2) ? text() : values[below(std::size(values))]);
  return attributes;
}

Timestamp OutlineGenerator::time() {
  return holds_.times && oneIn(2) ? someTime + static_cast<Timestamp>(below(1'000'000)) : someTime;
}

Row* OutlineGenerator::row(Outline& outline) {
  constexpr std::string_view leads[] = {"color", "level", "done", "x", "x", "language", "x", "x", "x"};
  const std::size_t which = holds_.styles ? below(std::size(document::rowTypes)) : 0;
  Row* row = outline.create(document::rowTypes[which], styledText(), time());
  if (!holds_.styles) return row;
  outline.setTimes(*row, row->created(), oneIn(2) ? row->created() : time());
  outline.setAttributes(*row, attributes(leads[which]));
  const std::string id = oneIn(4) ? text() + std::to_string(below(1'000'000)) : "";
  if (!outline.findPersistent(id)) outline.setPersistentId(*row, id);
  return row;
}

void OutlineGenerator::fill(Outline& outline, std::size_t rows) {
  outline.setCreated(someTime);
  if (holds_.styles && oneIn(2)) {
    outline.setPersistentId("doc" + text());
    outline.setFrontMatter(attributes("title"));
  }
  Row* last = &outline.root();
  for (; rows > 0; --rows) {
    Row* parent = last;
    while (parent->parent() && oneIn(2)) parent = &outline.mutableRow(*parent->parent());
    last = row(outline);
    outline.insert(*last, *parent);
  }
}

static std::string attributesOf(const Attributes& attributes) {
  std::string out;
  json::Writer writer(out);
  writeAttributes(writer, attributes);
  return out;
}

std::string dump(const Outline& outline, Holds holds) {
  std::string out;
  if (holds.styles) {
    json::appendString(outline.persistentId(), out);
    out += attributesOf(outline.frontMatter());
  }
  for (const PlacedRow& placed : placeAll(outline)) {
    const Row& row = *placed.row;
    out += '\n';
    if (holds.styles) {
      out.append(placed.depth * 2, ' ');
      json::Writer writer(out);
      writeRuns(writer, row.text());
      out.append(" ").append(name(row.type())).append(" ");
      out += attributesOf(row.attributes());
      json::appendString(row.persistentId(), out);
    } else {  // tabs before a text may be depth
      json::appendString(std::string(placed.depth, '\t') + row.text().string(), out);
    }
    if (holds.times)
      out += " " + document::formatTimestamp(row.created()) + " " + document::formatTimestamp(row.modified());
  }
  return out;
}

std::string writeAll(std::string_view format, const Outline& outline, bool rowsOnly) {
  std::string out;
  formatNamed(format)->write(outline, placeAll(outline), rowsOnly, out);
  return out;
}

void readAs(std::string_view format, std::string_view text, Outline& outline) {
  formatNamed(format)->read(text, {someTime}, outline);
}

}  // namespace vell::formats

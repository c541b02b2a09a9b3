#include <algorithm>
#include <pugixml.hpp>

#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/json_format.h"
#include "json/writer.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

class OpmlReader {
 public:
  OpmlReader(std::string_view text, const ReadOptions& options, Outline& outline)
      : text_(text), created_(options.time), outline_(outline), builder_(outline) {}

  void read();

 private:
  pugi::xml_node load();
  void readHead(pugi::xml_node head);
  void readHeadElement(pugi::xml_node element, Attributes& frontMatter);
  void readRow(pugi::xml_node element, std::size_t depth);
  void readAttribute(const pugi::xml_attribute& attribute, RowContent& row, std::string& markdown,
                     bool& hasModified);
  Timestamp time(const char* text, pugi::xml_node element) const;
  [[noreturn]] void fail(const std::string& fault, std::ptrdiff_t offset) const {
    const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
    throw FormatError(fault, text::lineNumber(text_, at), at);
  }

  std::string_view text_;
  Timestamp created_;
  Outline& outline_;
  TreeBuilder builder_;
  pugi::xml_document document_;
  pugi::xml_node element_;  ///< being read
};

pugi::xml_node OpmlReader::load() {
  const std::size_t nul = text_.find('\0');
  if (nul != std::string_view::npos)
    fail("a NUL character, which XML cannot hold", static_cast<std::ptrdiff_t>(nul));
  const unsigned flags = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_ws_pcdata;
  const pugi::xml_parse_result result =
      document_.load_buffer(text_.data(), text_.size(), flags, pugi::encoding_utf8);
  if (!result) fail(result.description(), result.offset);
  const pugi::xml_node opml = document_.child("opml");
  if (!opml) fail("not OPML: there is no <opml> element", 0);
  return opml;
}

void OpmlReader::read() {
  outline_.setCreated(created_);
  const pugi::xml_node opml = load();
  const pugi::xml_node body = opml.child("body");
  if (!body) fail("not OPML: there is no <body> element in <opml>", opml.offset_debug());
  readHead(opml.child("head"));
  std::size_t depth = 0;
  for (pugi::xml_node at = body.child("outline"); at;) {
    readRow(at, depth);
    if (const pugi::xml_node child = at.child("outline")) {
      at = child;
      ++depth;
      continue;
    }
    while (at != body && !at.next_sibling("outline")) {
      at = at.parent();
      --depth;
    }
    if (at == body) break;
    at = at.next_sibling("outline");
  }
}

void OpmlReader::readHead(pugi::xml_node head) {
  Attributes frontMatter;
  for (const pugi::xml_node element : head.children()) {
    if (element.type() == pugi::node_element) readHeadElement(element, frontMatter);
  }
  outline_.setFrontMatter(std::move(frontMatter));
}

void OpmlReader::readHeadElement(pugi::xml_node element, Attributes& frontMatter) {
  const std::string_view name = element.name();
  const char* value = element.text().get();
  if (name == "vell-id") {
    outline_.setPersistentId(value);
  } else if (name == "vell-created") {
    outline_.setCreated(created_ = time(value, element));
  } else if (name == "vell-frontMatter") {
    frontMatter = readAttributes(value);
  } else {
    frontMatter.set(name, value);
  }
}

void OpmlReader::readRow(pugi::xml_node element, std::size_t depth) {
  element_ = element;
  RowContent row;
  row.created = created_;
  std::string markdown;
  bool hasModified = false;
  for (const pugi::xml_attribute attribute : element.attributes()) {
    readAttribute(attribute, row, markdown, hasModified);
  }
  if (!hasModified) row.modified = row.created;
  Text styled = parseInline(markdown);
  if (styled.string() == row.text.string())
    row.text = std::move(styled);  // else the text was edited elsewhere
  builder_.add(depth, std::move(row));
}

void OpmlReader::readAttribute(const pugi::xml_attribute& attribute, RowContent& row, std::string& markdown,
                               bool& hasModified) {
  const std::string_view name = attribute.name();
  const char* value = attribute.value();
  if (name == "text") {
    row.text = Text(std::string(value));
  } else if (name == "vell-text") {
    markdown = value;
  } else if (name == "vell-type") {
    const auto type = document::rowType(value);
    if (!type) fail("there is no row type \"" + std::string(value) + "\"", element_.offset_debug());
    row.type = *type;
  } else if (name == "vell-id") {
    row.persistentId = value;
  } else if (name == "vell-created") {
    row.created = time(value, element_);
  } else if (name == "vell-modified") {
    row.modified = time(value, element_);
    hasModified = true;
  } else if (name == "vell-attributes") {
    row.attributes = readAttributes(value);
  } else {
    row.attributes.set(name, value);
  }
}

Timestamp OpmlReader::time(const char* text, pugi::xml_node element) const {
  const auto time = document::parseTimestamp(text);
  if (!time)
    fail("\"" + std::string(text) + "\" is not a time like 2026-01-31T12:00:00Z", element.offset_debug());
  return *time;
}

/// Characters that no XML text can hold are replaced by U+FFFD; blanks that readers would change become
/// references.
void appendXml(std::string& out, std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const std::string_view rest = text.substr(at, 3);
    const bool isNonCharacter = rest == "\xEF\xBF\xBE" || rest == "\xEF\xBF\xBF";
    if (c == '\t' || c == '\n' || c == '\r') {
      appendReference(out, c);
    } else if (isControl(c) || isNonCharacter) {
      out += "\xEF\xBF\xBD";
      if (isNonCharacter) at += 2;
    } else if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else {
      out += c;
    }
  }
}

/// A name that can stand for itself in XML and means nothing else here.
bool isFreeName(std::string_view name) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  const auto isNameByte = [&](char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  };
  if (name.empty() || !isLetter(name.front()) || !std::all_of(name.begin(), name.end(), isNameByte))
    return false;
  return name != "text" && name != "xmlns" && !name.starts_with("vell-");
}

void appendAttribute(std::string& out, std::string_view key, std::string_view value) {
  out.append(" ").append(key).append("=\"");
  appendXml(out, value);
  out += '"';
}

void appendElement(std::string& out, std::string_view name, std::string_view value) {
  out.append("    <").append(name).append(">");
  appendXml(out, value);
  out.append("</").append(name).append(">\n");
}

void appendAttributes(std::string& out, const Attributes& attributes) {
  const bool areFree = std::all_of(attributes.begin(), attributes.end(),
                                   [](const Attribute& entry) { return isFreeName(entry.key); });
  if (areFree) {
    for (const Attribute& entry : attributes) appendAttribute(out, entry.key, entry.value);
  } else {
    std::string json;
    json::Writer writer(json);
    writeAttributes(writer, attributes);
    appendAttribute(out, "vell-attributes", json);
  }
}

void openOutline(std::string& out, const Row& row, Timestamp created) {
  out += "<outline";
  appendAttribute(out, "text", row.text().string());
  if (row.type() != RowType::body) appendAttribute(out, "vell-type", name(row.type()));
  if (!row.persistentId().empty()) appendAttribute(out, "vell-id", row.persistentId());
  if (!row.text().isPlain()) {
    std::string markdown;
    appendInline(markdown, row.text());
    appendAttribute(out, "vell-text", markdown);
  }
  appendAttributes(out, row.attributes());
  if (row.created() != created)
    appendAttribute(out, "vell-created", document::formatTimestamp(row.created()));
  if (row.modified() != row.created())
    appendAttribute(out, "vell-modified", document::formatTimestamp(row.modified()));
}

void appendOutlines(std::string& out, std::span<const PlacedRow> rows, Timestamp created,
                    std::uint32_t indent) {
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const std::uint32_t depth = rows[index].depth;
    const std::uint32_t next = index + 1 < rows.size() ? rows[index + 1].depth : 0;
    out.append(depth + indent, '\t');
    openOutline(out, *rows[index].row, created);
    out += next > depth ? ">\n" : "/>\n";
    for (std::uint32_t closed = depth; closed > next; --closed) {
      out.append(closed - 1 + indent, '\t').append("</outline>\n");
    }
  }
}

void appendHead(std::string& out, const Outline& outline) {
  out += "  <head>\n";
  if (!outline.persistentId().empty()) appendElement(out, "vell-id", outline.persistentId());
  appendElement(out, "vell-created", document::formatTimestamp(outline.created()));
  const Attributes& entries = outline.frontMatter();
  const bool areFree = std::all_of(entries.begin(), entries.end(),
                                   [](const Attribute& entry) { return isFreeName(entry.key); });
  if (areFree) {
    for (const Attribute& entry : entries) appendElement(out, entry.key, entry.value);
  } else {
    std::string json;
    json::Writer writer(json);
    writeAttributes(writer, entries);
    appendElement(out, "vell-frontMatter", json);
  }
  out += "  </head>\n";
}

}  // namespace

void readOpml(std::string_view text, const ReadOptions& options, Outline& outline) {
  OpmlReader(checkedSource(text), options, outline).read();
}

void writeOpml(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  if (rowsOnly) return appendOutlines(out, rows, outline.created(), 0);
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opml version=\"2.0\">\n";
  appendHead(out, outline);
  out += "  <body>\n";
  appendOutlines(out, rows, outline.created(), 2);
  out += "  </body>\n</opml>\n";
}

}  // namespace vell::formats

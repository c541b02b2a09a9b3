#include <pugixml.hpp>

#include "formats/inline_text.h"
#include "formats/json_reader.h"
#include "formats/opml_format.h"
#include "formats/tree_builder.h"
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
    frontMatter = readJsonAttributes(value);
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
    row.attributes = readJsonAttributes(value);
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

}  // namespace

void readOpml(std::string_view text, const ReadOptions& options, Outline& outline) {
  OpmlReader(checkedSource(text), options, outline).read();
}

}  // namespace vell::formats

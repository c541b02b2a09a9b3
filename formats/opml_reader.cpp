#include <algorithm>
#include <pugixml.hpp>
#include <vector>

#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/json_format.h"
#include "formats/opml_format.h"
#include "formats/xml_text.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

class OpmlReader {
 public:
  OpmlReader(std::string_view text, const ReadOptions& options, Outline& outline)
      : text_(checkedSource(text)),
        skipped_(text.size() - text_.size()),
        created_(options.time),
        outline_(outline),
        builder_(outline, options.eachRow) {}

  void read();

 private:
  pugi::xml_node load();
  void readHead(pugi::xml_node head);
  void readHeadElement(pugi::xml_node element, Attributes& frontMatter);
  void readRows(pugi::xml_node body, const SourceSpan& span);
  void readRow(pugi::xml_node element, std::size_t depth, const SourceSpan& span);
  void readAttribute(const pugi::xml_attribute& attribute, RowContent& row, std::string& markdown,
                     bool& hasModified);
  SourceSpan spanOf(pugi::xml_node element, std::size_t parentEnd) const;
  Timestamp time(const std::string& text, pugi::xml_node element) const;
  [[noreturn]] void fail(const std::string& fault, std::ptrdiff_t offset) const {
    const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
    throw FormatError(fault, text::lineNumber(text_, at), at);
  }

  std::string_view text_;
  std::size_t skipped_;  ///< bytes of the source before the text: a byte order mark
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
  // Every kind of node: where one begins, the element before it has ended.
  const unsigned flags = xmlValues | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype;
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
  readRows(body, spanOf(body, spanOf(opml, text_.size()).closeBegin));
}

void OpmlReader::readRows(pugi::xml_node body, const SourceSpan& span) {
  builder_.addRoot(shifted(span, skipped_));
  std::vector<std::size_t> ends{span.closeBegin};
  for (pugi::xml_node at = body.child("outline"); at;) {
    const SourceSpan row = spanOf(at, ends.back());
    readRow(at, ends.size() - 1, row);
    if (const pugi::xml_node child = at.child("outline")) {
      ends.push_back(row.closeBegin);
      at = child;
      continue;
    }
    while (at != body && !at.next_sibling("outline")) {
      at = at.parent();
      ends.pop_back();
    }
    if (at == body) break;
    at = at.next_sibling("outline");
  }
}

/// `parentEnd` is where the parent's end tag begins. An element's own end tag is the last one before what
/// follows it.
SourceSpan OpmlReader::spanOf(pugi::xml_node element, std::size_t parentEnd) const {
  SourceSpan span;
  span.begin = static_cast<std::size_t>(element.offset_debug()) - 1;
  span.end = span.begin + xmlTagLength(text_.substr(span.begin));
  if (text_[span.end - 2] == '/') return span;
  const pugi::xml_node next = element.next_sibling();
  const std::size_t limit = next ? static_cast<std::size_t>(next.offset_debug()) : parentEnd;
  span.closeBegin = text_.substr(0, limit).rfind("</");
  span.closeEnd = text_.find('>', span.closeBegin) + 1;
  return span;
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
  const std::string value = xmlValue(element.text().get());
  if (name == "vell-id") {
    outline_.setPersistentId(value);
  } else if (name == "vell-created") {
    outline_.setCreated(created_ = time(value, element));
  } else if (name == divertedElement) {
    for (const Attribute& entry : readAttributes(value)) frontMatter.set(entry.key, entry.value);
  } else {
    frontMatter.set(name, value);
  }
}

void OpmlReader::readRow(pugi::xml_node element, std::size_t depth, const SourceSpan& span) {
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
  builder_.add(depth, std::move(row), shifted(span, skipped_));
}

void OpmlReader::readAttribute(const pugi::xml_attribute& attribute, RowContent& row, std::string& markdown,
                               bool& hasModified) {
  const std::string_view name = attribute.name();
  const std::string value = xmlValue(attribute.value());
  if (name == textName(element_.attribute("text") != nullptr)) {
    row.text = Text(value);
  } else if (name == "vell-text") {
    markdown = value;
  } else if (name == "vell-type") {
    const auto type = document::rowType(value);
    if (!type) fail("there is no row type \"" + value + "\"", element_.offset_debug());
    row.type = *type;
  } else if (name == "vell-id") {
    row.persistentId = value;
  } else if (name == "vell-created") {
    row.created = time(value, element_);
  } else if (name == "vell-modified") {
    row.modified = time(value, element_);
    hasModified = true;
  } else if (divertedNumber(name) != 0) {
    for (const Attribute& entry : readAttributes(value)) row.attributes.set(entry.key, entry.value);
  } else if (!isNamespaceName(name)) {
    row.attributes.set(name, value);
  }
}

Timestamp OpmlReader::time(const std::string& text, pugi::xml_node element) const {
  const auto time = document::parseTimestamp(text);
  if (!time) fail("\"" + text + "\" is not a time like 2026-01-31T12:00:00Z", element.offset_debug());
  return *time;
}

}  // namespace

void readOpml(std::string_view text, const ReadOptions& options, Outline& outline) {
  OpmlReader(text, options, outline).read();
}

}  // namespace vell::formats

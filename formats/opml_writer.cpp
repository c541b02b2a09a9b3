#include <algorithm>

#include "formats/inline_syntax.h"
#include "formats/inline_text.h"
#include "formats/json_text.h"
#include "formats/opml_format.h"

namespace vell::formats {
namespace {

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
    appendJsonObject(json, attributes);
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
    appendJsonObject(json, entries);
    appendElement(out, "vell-frontMatter", json);
  }
  out += "  </head>\n";
}

}  // namespace

void writeOpml(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  if (rowsOnly) return appendOutlines(out, rows, outline.created(), 0);
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opml version=\"2.0\">\n";
  appendHead(out, outline);
  out += "  <body>\n";
  appendOutlines(out, rows, outline.created(), 2);
  out += "  </body>\n</opml>\n";
}

}  // namespace vell::formats

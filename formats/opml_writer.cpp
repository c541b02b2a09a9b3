#include <algorithm>
#include <charconv>
#include <functional>

#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/json_format.h"
#include "formats/opml_format.h"
#include "formats/tree_update.h"
#include "formats/xml_text.h"
#include "json/writer.h"

namespace vell::formats {
namespace {

/// True for a name that can stand for itself in XML and means nothing else here.
bool isFree(std::string_view name) {
  return isXmlName(name) && name != "text" && name != "xmlns" && !name.starts_with("vell-");
}

std::string jsonOf(const Attributes& attributes) {
  std::string json;
  json::Writer writer(json);
  writeAttributes(writer, attributes);
  return json;
}

/// The entries from `first` on, each stretch of those that have no free name as one entry without a key.
std::vector<Attribute> divert(const Attributes& entries, std::size_t first) {
  std::vector<Attribute> result;
  Attributes diverted;
  const auto flush = [&] {
    if (!diverted.empty()) result.push_back({"", jsonOf(std::exchange(diverted, {}))});
  };
  for (const Attribute* entry = entries.begin() + first; entry != entries.end(); ++entry) {
    if (!isFree(entry->key)) {
      diverted.set(entry->key, entry->value);
      continue;
    }
    flush();
    result.push_back(*entry);
  }
  flush();
  return result;
}

void appendElement(std::string& out, std::string_view name, std::string_view value) {
  out.append("    <").append(name).append(">");
  appendXml(out, value);
  out.append("</").append(name).append(">\n");
}

void appendOutlines(std::string& out, std::span<const PlacedRow> rows, Timestamp created,
                    std::size_t indent) {
  const auto beginLine = [&](std::uint32_t depth) { out.append(std::min(depth + indent, maxIndent), '\t'); };
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const std::uint32_t depth = rows[index].depth;
    const std::uint32_t next = index + 1 < rows.size() ? rows[index + 1].depth : 0;
    beginLine(depth);
    appendOutlineTag(out, xmlAttributes(*rows[index].row, created, true), false);
    out += next > depth ? ">\n" : "/>\n";
    for (std::uint32_t closed = depth; closed > next; --closed) {
      beginLine(closed - 1);
      out += "</outline>\n";
    }
  }
}

void appendHead(std::string& out, const Outline& outline) {
  out += "  <head>\n";
  if (!outline.persistentId().empty()) appendElement(out, "vell-id", outline.persistentId());
  appendElement(out, "vell-created", document::formatTimestamp(outline.created()));
  for (const Attribute& entry : divert(outline.frontMatter(), 0)) {
    appendElement(out, entry.key.empty() ? divertedElement : entry.key, entry.value);
  }
  out += "  </head>\n";
}

}  // namespace

std::size_t divertedNumber(std::string_view name) {
  if (!name.starts_with(divertedName)) return 0;
  name.remove_prefix(divertedName.size());
  if (name.empty()) return 1;
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), number);
  return name.front() == '-' && error == std::errc() && end == name.data() + name.size() ? number : 0;
}

std::vector<Attribute> xmlAttributes(const Attributes& attributes, std::size_t first, std::size_t diverted) {
  std::vector<Attribute> result = divert(attributes, first);
  for (Attribute& entry : result) {
    if (!entry.key.empty()) continue;
    entry.key = divertedName;
    if (++diverted > 1) entry.key += "-" + std::to_string(diverted);
  }
  return result;
}

std::vector<Attribute> xmlAttributes(const Row& row, Timestamp created, bool tellsTimes) {
  std::vector<Attribute> result{{"text", row.text().string()}};
  if (row.type() != RowType::body) result.push_back({"vell-type", std::string(name(row.type()))});
  if (!row.persistentId().empty()) result.push_back({"vell-id", row.persistentId()});
  if (!row.text().isPlain()) appendInline(result.emplace_back(Attribute{"vell-text", ""}).value, row.text());
  for (Attribute& entry : xmlAttributes(row.attributes(), 0, 0)) result.push_back(std::move(entry));
  if (!tellsTimes) return result;
  if (row.created() != created) result.push_back({"vell-created", document::formatTimestamp(row.created())});
  if (row.modified() != row.created())
    result.push_back({"vell-modified", document::formatTimestamp(row.modified())});
  return result;
}

void appendOutlineTag(std::string& out, const std::vector<Attribute>& attributes, bool isAscii) {
  out += "<outline";
  for (const Attribute& entry : attributes) {
    out.append(" ").append(entry.key).append("=\"");
    appendXml(out, entry.value, {.isAscii = isAscii});
    out += '"';
  }
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

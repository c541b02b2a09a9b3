#include <span>

#include "formats/format.h"
#include "formats/json_format.h"

namespace vell::formats {
namespace {

enum class Ids { session, persistent };

void writeMembers(json::Writer& writer, const Row& row, Ids ids) {
  if (ids == Ids::session) writer.member("id", row.id());
  if (!row.persistentId().empty())
    writer.member(ids == Ids::session ? "persistentId" : "id", row.persistentId());
  writer.member("type", name(row.type()));
  writer.key("text");
  writeRuns(writer, row.text());
  if (!row.attributes().empty()) {
    writer.key("attributes");
    writeAttributes(writer, row.attributes());
  }
  writer.member("created", document::formatTimestamp(row.created()));
  writer.member("modified", document::formatTimestamp(row.modified()));
}

void writeRows(json::Writer& writer, std::span<const PlacedRow> rows, Ids ids) {
  writer.beginArray();
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const std::uint32_t depth = rows[index].depth;
    const std::uint32_t next = index + 1 < rows.size() ? rows[index + 1].depth : 0;
    writer.beginObject();
    writeMembers(writer, *rows[index].row, ids);
    if (next > depth) {
      writer.key("children").beginArray();
      continue;
    }
    writer.endObject();
    for (std::uint32_t closed = depth; closed > next; --closed) writer.endArray().endObject();
  }
  writer.endArray();
}

void write(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, Ids ids,
           std::string& out) {
  json::Writer writer(out);
  if (rowsOnly) return writeRows(writer, rows, ids);
  writer.beginObject();
  if (!outline.persistentId().empty())
    writer.member(ids == Ids::session ? "persistentId" : "id", outline.persistentId());
  writer.member("created", document::formatTimestamp(outline.created()));
  if (!outline.frontMatter().empty()) {
    writer.key("frontMatter");
    writeAttributes(writer, outline.frontMatter());
  }
  writer.key("rows");
  writeRows(writer, rows, ids);
  writer.endObject();
}

}  // namespace

void writeAttributes(json::Writer& writer, const Attributes& attributes) {
  writer.beginObject();
  for (const Attribute& attribute : attributes) writer.member(attribute.key, attribute.value);
  writer.endObject();
}

void writeRuns(json::Writer& writer, const Text& text) {
  writer.beginArray();
  text.forEachRun([&](std::string_view string, const Attributes& attrs) {
    writer.beginObject().member("string", string);
    if (!attrs.empty()) {
      writer.key("attrs");
      writeAttributes(writer, attrs);
    }
    writer.endObject();
  });
  writer.endArray();
}

void writeSessionRow(json::Writer& writer, const Row& row) {
  writer.beginObject();
  writeMembers(writer, row, Ids::session);
  writer.endObject();
}

void writeSession(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  write(outline, rows, rowsOnly, Ids::session, out);
}

void writeJson(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  write(outline, rows, rowsOnly, Ids::persistent, out);
}

}  // namespace vell::formats

#include "formats/json_format.h"

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "formats/format.h"
#include "json/error.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

std::string describe(const json::Node& node) {
  switch (node.kind()) {
    case json::Kind::object:
      return "an object";
    case json::Kind::array:
      return "an array";
    case json::Kind::string:
      return "a string";
    case json::Kind::number:
      return "a number";
    case json::Kind::boolean:
      return "a truth value";
    case json::Kind::null:
      break;
  }
  return "null";
}

void require(json::Kind kind, const json::Node& node, const std::string& expected) {
  if (node.kind() != kind) throw ShapeError("expected " + expected + ", not " + describe(node), node);
}

void requireMember(json::Kind kind, const json::Member& member, const std::string& expected) {
  if (member.value.kind() == kind) return;
  throw ShapeError("\"" + member.key + "\" should be " + expected + ", not " + describe(member.value),
                   member.value);
}

std::string stringOf(const json::Member& member) {
  requireMember(json::Kind::string, member, "a string");
  return *member.value.string();
}

Attributes attributesOf(const json::Member& member) {
  requireMember(json::Kind::object, member, "an object");
  Attributes attributes;
  for (const json::Member& entry : member.value.members()) attributes.set(entry.key, stringOf(entry));
  return attributes;
}

Timestamp timeOf(const json::Member& member) {
  const std::string text = stringOf(member);
  const auto time = document::parseTimestamp(text);
  if (!time) throw ShapeError("\"" + text + "\" is not a time like 2026-01-31T12:00:00Z", member.value);
  return *time;
}

RowType typeOf(const json::Member& member) {
  const std::string name = stringOf(member);
  const auto type = document::rowType(name);
  if (!type) throw ShapeError("there is no row type \"" + name + "\"", member.value);
  return *type;
}

Run runOf(const json::Node& node) {
  require(json::Kind::object, node, "a run like {\"string\":\"…\"}");
  Run run;
  for (const json::Member& member : node.members()) {
    if (member.key == "string") run.string = stringOf(member);
    if (member.key == "attrs" && member.value.kind() == json::Kind::object) run.attrs = attributesOf(member);
  }
  return run;
}

Text textOf(const json::Member& member) {
  if (const auto plain = member.value.string()) return Text(*plain);
  requireMember(json::Kind::array, member, "an array");
  return readRuns(member.value);
}

/// An id is a number where the rows are those of a live outline; such a number means nothing here.
bool isPersistentId(const json::Member& member) {
  return member.key == "persistentId" || (member.key == "id" && member.value.kind() == json::Kind::string);
}

class JsonReader {
 public:
  JsonReader(Timestamp time, Outline& outline) : time_(time), outline_(outline), builder_(outline) {
    outline_.setCreated(time);
  }

  void read(const json::Node& root) {
    if (root.kind() == json::Kind::array) return readRows(root);
    require(json::Kind::object, root, "a document or an array of rows");
    for (const json::Member& member : root.members()) {
      if (isPersistentId(member)) outline_.setPersistentId(stringOf(member));
      if (member.key == "created") outline_.setCreated(timeOf(member));
      if (member.key == "frontMatter") outline_.setFrontMatter(attributesOf(member));
      if (member.key == "rows") readRows(arrayOf(member));
    }
  }

 private:
  /// Rows side by side and how many of them are read.
  struct Siblings {
    std::vector<json::Node> rows;
    std::size_t next = 0;
  };

  static json::Node arrayOf(const json::Member& member) {
    requireMember(json::Kind::array, member, "an array");
    return member.value;
  }

  /// Keeps its own stack, so that depth costs no call frames.
  void readRows(const json::Node& rows) {
    std::vector<Siblings> open;
    open.push_back({rows.elements()});
    while (!open.empty()) {
      Siblings& siblings = open.back();
      if (siblings.next == siblings.rows.size()) {
        open.pop_back();
        continue;
      }
      const json::Node row = siblings.rows[siblings.next++];
      open.push_back({readRow(row, open.size() - 1)});
    }
  }

  /// Returns the row's children.
  std::vector<json::Node> readRow(const json::Node& node, std::size_t depth) {
    require(json::Kind::object, node, "a row");
    RowContent row;
    row.created = time_;
    std::optional<Timestamp> modified;
    std::vector<json::Node> children;
    for (const json::Member& member : node.members()) {
      if (isPersistentId(member)) row.persistentId = stringOf(member);
      if (member.key == "type") row.type = typeOf(member);
      if (member.key == "text") row.text = textOf(member);
      if (member.key == "attributes") row.attributes = attributesOf(member);
      if (member.key == "created") row.created = timeOf(member);
      if (member.key == "modified") modified = timeOf(member);
      if (member.key == "children") children = arrayOf(member).elements();
    }
    row.modified = modified.value_or(row.created);
    builder_.add(depth, std::move(row));
    return children;
  }

  Timestamp time_;
  Outline& outline_;
  TreeBuilder builder_;
};

/// Calls `read(const json::Node& root)` on what the text holds; faults are told as this room does.
template <class Read>
void readDocument(std::string_view text, Read&& read) {
  const std::string_view source = checkedSource(text);
  try {
    const json::Document document(source);
    read(document.root());
  } catch (const json::ParseError& error) {
    throw FormatError(error.fault(), text::lineNumber(source, error.offset()), error.offset());
  } catch (const ShapeError& error) {
    throw FormatError(error.what(), text::lineNumber(source, error.offset()), error.offset());
  }
}

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

Text readRuns(const json::Node& node) {
  Text text;
  for (const json::Node& each : node.elements()) {
    Run run = runOf(each);
    text.append(run.string, std::move(run.attrs));
  }
  return text;
}

Attributes readAttributes(std::string_view text) {
  Attributes attributes;
  readDocument(text, [&](const json::Node& root) { attributes = attributesOf({"attributes", root}); });
  return attributes;
}

void readJson(std::string_view text, const ReadOptions& options, Outline& outline) {
  readDocument(text, [&](const json::Node& root) { JsonReader(options.time, outline).read(root); });
}

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

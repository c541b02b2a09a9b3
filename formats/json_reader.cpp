#include "formats/json_format.h"

#include <optional>
#include <utility>
#include <vector>

#include "formats/format.h"
#include "formats/json_members.h"
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

class JsonReader {
 public:
  /// `text` is what the nodes are of; `skipped` bytes of the source stand before it: a byte order mark.
  JsonReader(std::string_view text, std::size_t skipped, const ReadOptions& options, Outline& outline)
      : text_(text),
        skipped_(skipped),
        time_(options.time),
        outline_(outline),
        builder_(outline, options.eachRow) {
    outline_.setCreated(time_);
  }

  void read(const json::Node& root) {
    if (root.kind() == json::Kind::array)
      return readRows(root, {root.offset(), root.offset() + 1, text_.rfind(']'), text_.rfind(']') + 1});
    require(json::Kind::object, root, "a document or an array of rows");
    const std::vector<json::Member> members = root.members();
    for (const json::Member& member : members) {
      if (isPersistentId(member.key, member.value.kind())) outline_.setPersistentId(stringOf(member));
      if (member.key == "created") outline_.setCreated(timeOf(member));
      if (member.key == "frontMatter") outline_.setFrontMatter(attributesOf(member));
    }
    const json::Member* rows = lastOf(members, rowsKey);
    if (!rows) throw ShapeError("not an outline: this object has no \"rows\"", root);
    requireMember(json::Kind::array, *rows, "an array");
    readRows(rows->value, spanOf(root, members, rows, text_.size()));
  }

 private:
  /// Rows side by side and how many of them are read.
  struct Siblings {
    std::vector<json::Node> rows;
    std::size_t end;  ///< the bracket behind them
    std::size_t next = 0;
  };

  /// Keeps its own stack, so that depth costs no call frames.
  void readRows(const json::Node& rows, const SourceSpan& root) {
    builder_.addRoot(shifted(root, skipped_));
    std::vector<Siblings> open;
    open.push_back({rows.elements(), root.closeBegin});
    while (!open.empty()) {
      Siblings& siblings = open.back();
      if (siblings.next == siblings.rows.size()) {
        open.pop_back();
        continue;
      }
      const json::Node row = siblings.rows[siblings.next++];
      const bool isLast = siblings.next == siblings.rows.size();
      open.push_back(
          readRow(row, open.size() - 1, isLast ? siblings.end : siblings.rows[siblings.next].offset()));
    }
  }

  /// Returns the row's children. What follows the row begins at `limit`.
  Siblings readRow(const json::Node& node, std::size_t depth, std::size_t limit) {
    require(json::Kind::object, node, "a row");
    RowContent row;
    row.created = time_;
    std::optional<Timestamp> modified;
    const std::vector<json::Member> members = node.members();
    for (const json::Member& member : members) {
      if (isPersistentId(member.key, member.value.kind())) row.persistentId = stringOf(member);
      if (member.key == "type") row.type = typeOf(member);
      if (member.key == "text") row.text = textOf(member);
      if (member.key == "attributes") row.attributes = attributesOf(member);
      if (member.key == "created") row.created = timeOf(member);
      if (member.key == "modified") modified = timeOf(member);
      if (member.key == childrenKey) requireMember(json::Kind::array, member, "an array");
    }
    row.modified = modified.value_or(row.created);
    const json::Member* children = lastOf(members, childrenKey);
    const SourceSpan span = spanOf(node, members, children, limit);
    builder_.add(depth, std::move(row), shifted(span, skipped_));
    return {children ? children->value.elements() : std::vector<json::Node>(), span.closeBegin};
  }

  /// Of an object with its list of rows, null where it has none. A bracket that closes is the last one before
  /// what follows, which begins at `limit`.
  SourceSpan spanOf(const json::Node& node, const std::vector<json::Member>& members,
                    const json::Member* list, std::size_t limit) const {
    const std::size_t brace = text_.rfind('}', limit);
    if (!list) return {.begin = node.offset(), .end = brace + 1};
    const bool isLast = list == &members.back();
    const std::size_t bracket = text_.rfind(']', isLast ? brace : list[1].offset);
    return {node.offset(), list->value.offset() + 1, bracket, brace + 1};
  }

  std::string_view text_;
  std::size_t skipped_;
  Timestamp time_;
  Outline& outline_;
  TreeBuilder builder_;
};

/// Calls `read(std::string_view text, const json::Node& root)` on what the text holds; faults are told as
/// this room does.
template <class Read>
void readDocument(std::string_view text, Read&& read) {
  const std::string_view source = checkedSource(text);
  try {
    const json::Document document(source);
    read(source, document.root());
  } catch (const json::ParseError& error) {
    throw FormatError(error.fault(), text::lineNumber(source, error.offset()), error.offset());
  } catch (const ShapeError& error) {
    throw FormatError(error.what(), text::lineNumber(source, error.offset()), error.offset());
  }
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
  readDocument(text, [&](std::string_view, const json::Node& root) {
    attributes = attributesOf({"attributes", root});
  });
  return attributes;
}

void readJson(std::string_view text, const ReadOptions& options, Outline& outline) {
  readDocument(text, [&](std::string_view source, const json::Node& root) {
    JsonReader(source, text.size() - source.size(), options, outline).read(root);
  });
}

}  // namespace vell::formats

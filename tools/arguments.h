#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ipc/methods.h"
#include "mcp/parameters.h"
#include "mcp/value.h"

/// How the tools' arguments look where their record's field does not say so; see mcp/parameters.h.
namespace vell::tools {

/// One of the texts that `Names::all` lists.
template <class Names>
struct Choice {
  static mcp::Value schema() { return mcp::schema::oneOf({std::begin(Names::all), std::end(Names::all)}); }
  static std::string decode(const mcp::Value& value) { return *value.string(); }
};

struct VellReadFormat : Choice<VellReadFormat> {
  static constexpr const char* all[] = {"json", "session", "markdown"};
};

struct VellRowShape : Choice<VellRowShape> {
  static constexpr const char* all[] = {"tree", "flat"};
};

struct VellNewOutlineFormat : Choice<VellNewOutlineFormat> {
  static constexpr const char* all[] = {"vell", "markdown", "opml", "txt", "json"};
};

/// "start", "end" or an index, which may come as a number.
struct Position {
  static mcp::Value schema() { return mcp::schema::anyOf({mcp::schema::string(), mcp::schema::integer()}); }
  static std::string decode(const mcp::Value& value) {
    return value.string() ? *value.string() : std::to_string(value.asInteger().value());
  }
};

/// Row references; an empty list means none, which is every row.
struct RowRefs {
  static mcp::Value schema() { return mcp::schema::arrayOf(mcp::schema::string()); }
  static std::optional<std::vector<std::string>> decode(const mcp::Value& value) {
    auto refs = mcp::Argument<std::vector<std::string>>::decode(value);
    return refs.empty() ? std::nullopt : std::optional(std::move(refs));
  }
};

/// A row's text: markdown, or an array of styled runs, which is passed on as it came.
struct McpTextInput {
  static mcp::Value schema() {
    using namespace mcp;
    const Value run = schema::object(
        {{"string", schema::string()}, {"attrs", schema::mapOf(schema::string())}}, {"string"}, true);
    return schema::anyOf({schema::string(), schema::arrayOf(run)});
  }
  static ipc::RowText decode(const mcp::Value& value) {
    if (const auto* markdown = value.string()) return *markdown;
    return ipc::StyledRuns{mcp::encode(value)};
  }
};

/// The field of a record's place.
inline auto inPlace(std::optional<std::string> ipc::RowPlace::*field) {
  return [field](auto& record) -> std::optional<std::string>& { return record.place.*field; };
}

/// Adds where new rows go: the outline and the place in it. `siblingRef` says what names a sibling.
template <class Record>
mcp::Parameters<Record> withPlace(mcp::Parameters<Record> parameters, const std::string& siblingRef) {
  const std::string behind =
      " this sibling row (" + siblingRef + "). Takes precedence over `parent`+`position`.";
  return std::move(parameters)
      .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).")
      .optional("parent", inPlace(&ipc::RowPlace::parent),
                "Optional parent row id (row ref: session id, persistent id, `@selection`, or `@focused`). "
                "Defaults to the outline root.")
      .template optional<Position>(
          "position", inPlace(&ipc::RowPlace::position),
          "Where among the parent's children: `start`, `end` (default), or an integer index.")
      .optional("before", inPlace(&ipc::RowPlace::before), "Insert before" + behind)
      .optional("after", inPlace(&ipc::RowPlace::after), "Insert after" + behind);
}

}  // namespace vell::tools

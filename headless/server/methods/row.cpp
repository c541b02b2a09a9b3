#include <algorithm>

#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/json_format.h"
#include "headless/editing/arrange_rows.h"
#include "headless/editing/create_rows.h"
#include "headless/editing/update_rows.h"
#include "headless/server/answers.h"
#include "headless/server/methods.h"
#include "json/rewrite.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

OpenOutline& outlineParam(const Call& call) {
  return call.application.outline(call.params.string("outline"));
}

const Row* rowParam(const Params& params, const RowRefs& refs, std::string_view key) {
  const auto ref = params.string(key);
  return ref ? &refs.row(*ref) : nullptr;
}

/// `before` and `after` win over the parent and position, which are then not looked at; `before` over
/// `after`.
DestinationRequest destinationParams(const Params& params, const RowRefs& refs, std::string_view parentKey) {
  const Row* before = rowParam(params, refs, "before");
  const Row* after = before == nullptr ? rowParam(params, refs, "after") : nullptr;
  if (before != nullptr || after != nullptr) return {nullptr, {}, before, after};
  return {rowParam(params, refs, parentKey), params.stringOrInteger("position"), nullptr, nullptr};
}

Destination newRowsDestination(const Params& params, const Outline& outline, const RowRefs& refs) {
  return resolve(outline, destinationParams(params, refs, "parent"));
}

/// Files may hold runs with other members; a request that names one means something else.
void checkRuns(std::string_view key, const json::Node& runs) {
  std::size_t index = 0;
  for (const json::Node& run : runs.elements()) {
    const std::string place = std::string(key) + "[" + std::to_string(index++) + "]";
    if (run.kind() != json::Kind::object) continue;
    for (const auto& [name, value, at] : run.members())
      if (name != "string" && name != "attrs")
        Params::fail(place, "a run {string, attrs?}", "one with the member " + json::quoted(name));
    if (!run.find("string")) Params::fail(place + ".string", "a string", "nothing");
  }
}

/// Takes the mark of a task, "- [ ] " or "- [x] ", off the front of markdown for a task's text: it means the
/// row's type and state.
std::string_view takeTaskMark(std::string_view markdown, RowUpdate& update) {
  const bool done = markdown.starts_with("- [x] ") || markdown.starts_with("- [X] ");
  if (!done && !markdown.starts_with("- [ ] ")) return markdown;
  if (update.type.value_or("task") != "task") return markdown;
  update.type = "task";
  const bool given = std::any_of(update.attributes.begin(), update.attributes.end(),
                                 [](const auto& attribute) { return attribute.first == "done"; });
  if (!given)
    update.attributes.emplace_back("done", done ? std::optional<std::string>("true") : std::nullopt);
  return markdown.substr(std::string_view("- [ ] ").size());
}

std::optional<Text> textParam(const Params& params, std::string_view key, RowUpdate& update) {
  const auto value = params.member(key);
  if (!value) return std::nullopt;
  if (const auto markdown = value->string()) return formats::parseInline(takeTaskMark(*markdown, update));
  if (value->kind() != json::Kind::array)
    Params::fail(key, "a markdown string or an array of runs", describe(*value));
  checkRuns(key, *value);
  try {
    return formats::readRuns(*value);
  } catch (const formats::ShapeError& error) {
    Params::fail(key, "an array of runs {string, attrs?}", std::string("one that is none: ") + error.what());
  }
}

const char* typeName(json::Kind kind) {
  switch (kind) {
    case json::Kind::object:
      return "object";
    case json::Kind::array:
      return "array";
    case json::Kind::boolean:
      return "boolean";
    default:
      return "number";
  }
}

std::vector<std::pair<std::string, std::optional<std::string>>> attributesParam(const Params& params) {
  const auto value = params.member("attributes");
  if (!value) return {};
  if (value->kind() != json::Kind::object) Params::fail("attributes", "an object", describe(*value));
  std::vector<std::pair<std::string, std::optional<std::string>>> attributes;
  for (const auto& [key, content, at] : value->members()) {
    if (content.kind() != json::Kind::string && content.kind() != json::Kind::null)
      Params::fail("attributes." + key, "a string or null",
                   std::string("a value of type ") + typeName(content.kind()));
    attributes.emplace_back(key, content.string());
  }
  return attributes;
}

RowUpdate updateParams(const Params& params) {
  RowUpdate update;
  update.type = params.string("type");
  update.attributes = attributesParam(params);
  update.persistentId = params.string("persistentId");
  update.text = textParam(params, "text", update);
  update.append = textParam(params, "append", update);
  update.prepend = textParam(params, "prepend", update);
  return update;
}

}  // namespace

std::string rowCreate(const Call& call) {
  const std::string markdown = call.params.requiredString("markdown");
  return call.change(outlineParam(call), [&](Transaction& transaction, const RowRefs& refs) {
    const Destination to = newRowsDestination(call.params, transaction.outline(), refs);
    return rowAnswer(createRow(transaction.edit(), markdown, to));
  });
}

std::string rowCreateMany(const Call& call) {
  const std::string markdown = call.params.requiredString("markdown");
  return call.change(outlineParam(call), [&](Transaction& transaction, const RowRefs& refs) {
    const Destination to = newRowsDestination(call.params, transaction.outline(), refs);
    return rowsAnswer(createRows(transaction.edit(), markdown, to));
  });
}

std::string rowUpdate(const Call& call) {
  const auto rows = call.params.requiredStrings("rows");
  const RowUpdate update = updateParams(call.params);
  return call.change(outlineParam(call), [&](Transaction& transaction, const RowRefs& refs) {
    return updatedRowsAnswer(updateRows(transaction.edit(), refs.rows(rows), update));
  });
}

std::string rowMove(const Call& call) {
  const auto rows = call.params.requiredStrings("rows");
  if (!call.params.member("to") && !call.params.member("before") && !call.params.member("after"))
    Params::fail("to", "a row reference (or before, or after)", "nothing");
  return call.change(outlineParam(call), [&](Transaction& transaction, const RowRefs& refs) {
    const DestinationRequest to = destinationParams(call.params, refs, "to");
    return rowsAnswer(moveRows(transaction.edit(), refs.rows(rows), to));
  });
}

std::string rowDelete(const Call& call) {
  const auto rows = call.params.requiredStrings("rows");
  return call.change(outlineParam(call), [&](Transaction& transaction, const RowRefs& refs) {
    const auto found = refs.rows(rows);
    transaction.deselect(found);
    return memberAnswer("deleted", deleteRows(transaction.edit(), found));
  });
}

}  // namespace vell::headless::methods

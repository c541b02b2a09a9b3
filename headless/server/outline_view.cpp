#include "headless/server/outline_view.h"

#include "headless/formats/json_text.h"

namespace vell::headless {
namespace {

/// Needs no evaluation, and no list of its own of a million rows.
constexpr std::string_view everyRow = "//*";

const Format& formatParam(const Params& params) {
  const std::string name = params.string("format").value_or("session");
  if (const Format* format = formatNamed(name)) return *format;
  std::string names;
  for (const Format& format : formats())
    names.append(names.empty() ? "\"" : ", \"").append(format.name).append("\"");
  Params::fail("format", "one of " + names, "\"" + name + "\"");
}

}  // namespace

OutlineView viewParams(const Params& params) {
  return {&formatParam(params),
          params.choice("shape", {{"tree", Shape::tree}, {"flat", Shape::flat}}, Shape::tree),
          params.flag("rows", false)};
}

PlacedRows placeRefs(const Application& application, const OpenOutline& opened,
                     const std::vector<std::string>& refs, Shape shape) {
  if (refs.empty()) return placeAll(opened.outline(), shape);
  if (refs.size() == 1 && refs.front() == everyRow) return placeAll(opened.outline(), shape);
  return placeSome(opened.outline(), application.refs(opened).rows(refs), shape);
}

PlacedRows placePath(const Application& application, const OpenOutline& opened, const std::string& path,
                     Shape shape) {
  if (path == everyRow) return placeAll(opened.outline(), shape);
  return placeSome(opened.outline(), application.rowsAlong(opened, path), shape);
}

std::string render(const OutlineView& view, const Outline& outline, const PlacedRows& rows) {
  std::string text;
  view.format->write(outline, rows, view.rowsOnly, text);
  if (view.format->isJson) return text;
  std::string json;
  appendJsonString(json, text);
  return json;
}

}  // namespace vell::headless

#include "headless/server/outline_view.h"

#include "headless/access.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

/// Selects every row: placed without evaluating it.
constexpr std::string_view everyRow = "//*";

const formats::Format& formatParam(const Params& params) {
  const std::string name = params.string("format").value_or("session");
  if (const formats::Format* format = formats::formatNamed(name)) return *format;
  std::string names;
  for (const formats::Format& format : formats::formats())
    names.append(names.empty() ? "\"" : ", \"").append(format.name).append("\"");
  Params::fail("format", "one of " + names, "\"" + name + "\"");
}

}  // namespace

OutlineView viewParams(const Params& params) {
  return {&formatParam(params),
          params.choice("shape", {{"tree", formats::Shape::tree}, {"flat", formats::Shape::flat}},
                        formats::Shape::tree),
          params.flag("rows", false)};
}

formats::PlacedRows placeRefs(const OpenOutline& opened, const std::vector<std::string>& refs,
                              formats::Shape shape) {
  if (refs.empty()) return formats::placeAll(opened.outline(), shape);
  if (refs.size() == 1 && refs.front() == everyRow) return formats::placeAll(opened.outline(), shape);
  return formats::placeSome(opened.outline(), opened.refs().rows(refs), shape);
}

formats::PlacedRows placePath(const OpenOutline& opened, const std::string& path, formats::Shape shape) {
  if (path == everyRow) return formats::placeAll(opened.outline(), shape);
  return formats::placeSome(opened.outline(), selectRows(opened.outline(), opened.editor(), path), shape);
}

std::string render(const OutlineView& view, const Outline& outline, const formats::PlacedRows& rows) {
  std::string text;
  beside([&] {
    view.format->write(outline, rows, view.rowsOnly, text);
    if (!view.format->isJson) text = json::quoted(text);
  });
  return text;
}

}  // namespace vell::headless

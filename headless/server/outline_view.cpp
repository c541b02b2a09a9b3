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

template <class Select>
std::string render(const OutlineView& view, const Outline& outline, bool every, Select select) {
  std::string text;
  beside([&] {
    view.format->write(
        outline,
        every ? formats::placeAll(outline, view.shape) : formats::placeSome(outline, select(), view.shape),
        view.rowsOnly, text);
    if (!view.format->isJson) text = json::quoted(text);
  });
  return text;
}

}  // namespace

OutlineView viewParams(const Params& params) {
  return {&formatParam(params),
          params.choice("shape", {{"tree", formats::Shape::tree}, {"flat", formats::Shape::flat}},
                        formats::Shape::tree),
          params.flag("rows", false)};
}

std::string renderRefs(const OutlineView& view, const OpenOutline& opened,
                       const std::vector<std::string>& refs) {
  const bool every = refs.empty() || (refs.size() == 1 && refs.front() == everyRow);
  const RowRefs rows = opened.refs();
  return render(view, opened.outline(), every, [&] { return rows.rows(refs); });
}

std::string renderPath(const OutlineView& view, const OpenOutline& opened, const std::string& path) {
  return render(view, opened.outline(), path == everyRow,
                [&] { return selectRows(opened.outline(), opened.editor(), path); });
}

void checkPath(const OpenOutline& opened, const std::string& path) {
  if (path != everyRow) selectRows(opened.outline(), opened.editor(), path);
}

}  // namespace vell::headless

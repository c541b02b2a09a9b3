#include "ipc/methods/row.h"

#include "ipc/methods/params.h"
#include "json/rewrite.h"

namespace vell::ipc {

namespace {

std::string createParams(const std::string& markdown, const std::optional<std::string>& outline,
                         const RowPlace& place) {
  return ParamsWriter()
      .add("markdown", markdown)
      .add("outline", outline)
      .add("parent", place.parent)
      .add("position", place.position)
      .add("before", place.before)
      .add("after", place.after)
      .json();
}

void addText(ParamsWriter& params, const std::string& key, const std::optional<RowText>& text) {
  if (!text) return;
  if (const auto* markdown = std::get_if<std::string>(&*text)) {
    params.add(key, *markdown);
  } else {
    params.addJson(key, json::rewrite(std::get<StyledRuns>(*text).json, json::Layout::compact));
  }
}

}  // namespace

std::string RowCreate::toJson() const { return createParams(markdown, outline, place); }

std::string RowCreateMany::toJson() const { return createParams(markdown, outline, place); }

std::string RowUpdate::toJson() const {
  ParamsWriter params;
  params.add("rows", rows)
      .add("outline", outline)
      .add("type", type)
      .add("attributes", attributes)
      .add("persistentId", persistentId);
  addText(params, "text", text);
  addText(params, "append", append);
  addText(params, "prepend", prepend);
  return params.json();
}

std::string RowMove::toJson() const {
  return ParamsWriter()
      .add("rows", rows)
      .add("to", to)
      .add("position", position)
      .add("before", before)
      .add("after", after)
      .add("outline", outline)
      .json();
}

std::string RowDelete::toJson() const {
  return ParamsWriter().add("rows", rows).add("outline", outline).json();
}

}  // namespace vell::ipc

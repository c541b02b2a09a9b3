#include "headless/editing/problem.h"
#include "headless/server/answers.h"
#include "headless/server/methods.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

const Row* optionalRow(const RowRefs& refs, const Params& params, std::string_view key) {
  const auto ref = params.string(key);
  return ref ? &refs.row(*ref) : nullptr;
}

const Row* selectableRow(const RowRefs& refs, const Params& params, std::string_view key) {
  const Row* row = optionalRow(refs, params, key);
  if (row != nullptr && row->parent() == nullptr) throw Problem("The root of an outline cannot be selected");
  return row;
}

void update(Editor& editor, const Params& params, const RowRefs& refs) {
  // Everything is found before anything moves.
  const Row* focus = optionalRow(refs, params, "focus");
  const auto expand = refs.rows(params.strings("expand"));
  const auto collapse = refs.rows(params.strings("collapse"));
  const Row* anchor = selectableRow(refs, params, "selectRow");
  const Row* head = selectableRow(refs, params, "selectHead");
  if (head != nullptr && anchor == nullptr) Params::fail("selectHead", "selectRow with it", "it alone");

  if (focus != nullptr) editor.focus(*focus);
  for (const Row* row : expand) editor.setCollapsed(*row, false);
  for (const Row* row : collapse) editor.setCollapsed(*row, true);
  if (anchor != nullptr) editor.select(*anchor, head != nullptr ? *head : *anchor);
}

}  // namespace

std::string editorList(const Call& call) {
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const auto& outline : call.application.outlines()) {
    writer.beginObject()
        .member("id", outline->editor().id())
        .member("outlineId", outline->persistentId())
        .endObject();
  }
  writer.endArray();
  return text;
}

std::string editorUpdate(const Call& call) {
  OpenOutline& opened = call.application.outline(call.params.string("outline"));
  const RowRefs refs = opened.refs();
  std::string answer;
  beside([&] {
    update(opened.editor(), call.params, refs);
    answer = editorSnapshot(opened);
  });
  call.application.changed(opened);
  return answer;
}

std::string editorGet(const Call& call) {
  const OpenOutline& opened = call.application.outlineOfEditor(call.params.string("editor"));
  std::string answer;
  beside([&] { answer = editorSnapshot(opened); });
  return answer;
}

}  // namespace vell::headless::methods

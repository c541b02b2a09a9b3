#include "headless/server/answers.h"

#include "formats/json_format.h"
#include "headless/storage/paths.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

std::vector<SessionId> idsOf(const std::vector<const Row*>& rows) {
  std::vector<SessionId> ids;
  ids.reserve(rows.size());
  for (const Row* row : rows) ids.push_back(row->id());
  return ids;
}

std::string plainText(const std::vector<const Row*>& rows) {
  std::string text;
  for (const Row* row : rows) {
    if (row != rows.front()) text += '\n';
    text += row->text().string();
  }
  return text;
}

}  // namespace

std::string rowAnswer(const Row& row) {
  std::string text;
  json::Writer writer(text);
  formats::writeSessionRow(writer, row);
  return text;
}

std::string rowsAnswer(const std::vector<const Row*>& rows) {
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const Row* row : rows) formats::writeSessionRow(writer, *row);
  writer.endArray();
  return text;
}

std::string updatedRowsAnswer(const std::vector<UpdatedRow>& rows) {
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const UpdatedRow& updated : rows) {
    writer.beginObject().key("row").raw(rowAnswer(*updated.row));
    Attributes errors;
    for (const FieldError& error : updated.fieldErrors) errors.set(error.field, error.message);
    if (!errors.empty()) {
      writer.key("fieldErrors").beginObject();
      for (const auto& [field, message] : errors) writer.member(field, message);
      writer.endObject();
    }
    writer.endObject();
  }
  writer.endArray();
  return text;
}

std::string summary(const OpenOutline& opened) {
  std::string text;
  const auto url = opened.isUntitled() ? std::nullopt : std::optional(fileUrl(opened.storagePath()));
  json::Writer(text)
      .beginObject()
      .member("displayName", opened.displayName())
      .member("fileURL", url)
      .member("persistentId", opened.persistentId())
      .endObject();
  return text;
}

std::string summaries(const Application& application) {
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const auto& outline : application.outlines()) writer.raw(summary(*outline));
  writer.endArray();
  return text;
}

std::string editorSnapshot(const OpenOutline& opened) {
  const Editor& editor = opened.editor();
  const auto selected = editor.selectedRows();
  std::string text;
  json::Writer(text)
      .beginObject()
      .key("collapsed")
      .array(idsOf(editor.collapsedRows()))
      .key("focused")
      .array(idsOf(editor.focusStack()))
      .member("id", editor.id())
      .member("outlineId", opened.persistentId())
      .key("selection")
      .beginObject()
      .member("anchor", editor.anchor().id())
      .member("head", editor.head().id())
      .key("rows")
      .array(idsOf(selected))
      .member("text", plainText(selected))
      .endObject()
      .endObject();
  return text;
}

}  // namespace vell::headless

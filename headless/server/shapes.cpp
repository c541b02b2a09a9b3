#include "headless/server/shapes.h"

#include "headless/server/request.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

std::string idArray(const std::vector<const Row*>& rows) {
  std::string text = "[";
  for (const Row* row : rows) {
    if (text.size() > 1) text += ',';
    text += std::to_string(row->id());
  }
  return text + "]";
}

std::string plainText(const std::vector<const Row*>& rows) {
  std::string text;
  for (const Row* row : rows) {
    if (row != rows.front()) text += '\n';
    text += row->text().string();
  }
  return text;
}

std::string selection(const Editor& editor) {
  const auto rows = editor.selectedRows();
  return R"({"anchor":)" + std::to_string(editor.anchor().id()) + R"(,"head":)" +
         std::to_string(editor.head().id()) + R"(,"rows":)" + idArray(rows) + R"(,"text":)" +
         quote(plainText(rows)) + "}";
}

}  // namespace

std::string summary(const OpenOutline& opened) {
  const std::string url = opened.isUntitled() ? "null" : quote(fileUrl(opened.storagePath()));
  return R"({"displayName":)" + quote(opened.displayName()) + R"(,"fileURL":)" + url + R"(,"persistentId":)" +
         quote(opened.persistentId()) + "}";
}

std::string summaries(const Application& application) {
  std::string text = "[";
  for (const auto& outline : application.outlines()) {
    if (text.size() > 1) text += ',';
    text += summary(*outline);
  }
  return text + "]";
}

std::string editorSnapshot(const OpenOutline& opened) {
  const Editor& editor = opened.editor();
  return R"({"collapsed":)" + idArray(editor.collapsedRows()) + R"(,"focused":)" +
         idArray(editor.focusStack()) + R"(,"id":)" + quote(editor.id()) + R"(,"outlineId":)" +
         quote(opened.persistentId()) + R"(,"selection":)" + selection(editor) + "}";
}

}  // namespace vell::headless

#include "formats/format.h"
#include "headless/editing/uuid.h"
#include "headless/server/methods.h"
#include "headless/server/outline_view.h"
#include "headless/server/request.h"
#include "headless/server/shapes.h"

namespace vell::headless::methods {
namespace {

/// What a file can be written in and read back from; `fallback` where none is named.
const formats::Format& fileFormatParam(const Params& params, std::string_view fallback) {
  const std::string name = params.string("format").value_or(std::string(fallback));
  std::string names;
  for (const formats::Format& format : formats::formats()) {
    if (format.read == nullptr) continue;
    if (format.name == name) return format;
    names.append(names.empty() ? "\"" : ", \"").append(format.name).append("\"");
  }
  Params::fail("format", "one of " + names, "\"" + name + "\"");
}

std::string orNull(const OpenOutline* opened) { return opened != nullptr ? summary(*opened) : "null"; }

}  // namespace

std::string outlineList(const Call& call) { return summaries(call.application); }

std::string outlineGet(const Call& call) {
  const OutlineView view = viewParams(call.params);
  const OpenOutline& opened = call.application.outline(call.params.string("outline"));
  const auto refs = call.params.strings("rowRefs");
  return render(view, opened.outline(), placeRefs(opened, refs, view.shape));
}

std::string outlineFindByPath(const Call& call) {
  return orNull(call.application.findByPath(call.params.requiredString("path")));
}

std::string outlineFindByPersistentId(const Call& call) {
  return orNull(call.application.findByPersistentId(call.params.requiredString("persistentId")));
}

std::string outlineBringToFront(const Call& call) {
  const OpenOutline& opened = call.application.outline(call.params.string("outline"));
  call.application.bringToFront(opened);
  return summary(opened);
}

std::string outlineNew(const Call& call) {
  fileFormatParam(call.params, "vell");
  return summary(call.application.newUntitled());
}

std::string outlineNewContent(const Call& call) {
  const formats::Format& format = fileFormatParam(call.params, "vell");
  Outline empty;
  empty.setPersistentId(newUuid());
  empty.setCreated(document::currentTime());
  std::string text;
  format.write(empty, {}, false, text);
  return quote(text);
}

std::string outlineClose(const Call& call) {
  OpenOutline& opened = call.application.outline(call.params.string("outline"));
  call.application.close(opened, call.params.flag("discard", false));
  return R"({"closed":true})";
}

}  // namespace vell::headless::methods

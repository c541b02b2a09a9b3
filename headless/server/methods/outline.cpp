#include <filesystem>

#include "formats/format.h"
#include "headless/editing/problem.h"
#include "headless/editing/uuid.h"
#include "headless/server/answers.h"
#include "headless/server/methods.h"
#include "headless/server/outline_view.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

/// A format that files can have; `fallback` if none is named.
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

/// The system would take what stands before a NUL for the path.
void refuseNul(std::string_view key, const std::string& path) {
  if (path.find('\0') != std::string::npos) Params::fail(key, "a path without NUL", json::quoted(path));
}

std::string orNull(const OpenOutline* opened) { return opened != nullptr ? summary(*opened) : "null"; }

void openOne(json::Writer& entries, Application& application, const std::string& path) {
  entries.beginObject();
  try {
    if (std::filesystem::is_directory(path)) {
      entries.member("outlines", application.serveFolder(path));
    } else {
      const std::string opened = summary(application.open(path));
      entries.key("outline").raw(opened);
    }
  } catch (const Problem& problem) {
    entries.member("error", problem.what());
  }
  entries.member("path", path).endObject();
}

}  // namespace

std::string applicationOpen(const Call& call) {
  const auto paths = call.params.requiredStrings("paths");
  for (const std::string& path : paths) {
    if (!path.starts_with('/')) Params::fail("paths", "absolute paths", json::quoted(path));
    refuseNul("paths", path);
  }
  std::string text;
  json::Writer entries(text);
  entries.beginArray();
  for (const std::string& path : paths) openOne(entries, call.application, path);
  entries.endArray();
  // The file named first ends up in front.
  for (auto path = paths.rbegin(); path != paths.rend(); ++path)
    if (const OpenOutline* opened = call.application.findByPath(*path))
      call.application.bringToFront(*opened);
  return text;
}

std::string outlineList(const Call& call) { return summaries(call.application); }

std::string outlineGet(const Call& call) {
  const OutlineView view = viewParams(call.params);
  const OpenOutline& opened = call.application.outline(call.params.string("outline"));
  const auto refs = call.params.strings("rowRefs");
  return renderRefs(view, opened, refs);
}

std::string outlineFindByPath(const Call& call) {
  call.params.nonEmpty("path", "a path");
  const std::string path = call.params.requiredString("path");
  refuseNul("path", path);
  const OpenOutline* opened = call.application.findByPath(path);
  const auto refusal = opened == nullptr ? call.application.refusal(path) : std::nullopt;
  return refusal ? memberAnswer("refused", *refusal) : orNull(opened);
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
  return summary(call.application.newUntitled(fileFormatParam(call.params, "vell")));
}

std::string outlineNewContent(const Call& call) {
  const formats::Format& format = fileFormatParam(call.params, "vell");
  Outline empty;
  empty.setPersistentId(newUuid());
  empty.setCreated(document::currentTime());
  std::string text;
  format.write(empty, {}, false, text);
  return json::quoted(text);
}

std::string outlineClose(const Call& call) {
  OpenOutline& opened = call.application.outline(call.params.string("outline"));
  call.application.close(opened, call.params.flag("discard", false));
  return memberAnswer("closed", true);
}

}  // namespace vell::headless::methods

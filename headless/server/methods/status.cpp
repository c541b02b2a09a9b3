#include <unistd.h>

#include "headless/server/methods.h"
#include "json/writer.h"
#include "platform/container.h"

namespace vell::headless::methods {
namespace {

void describe(json::Writer& writer, const Application& application, const OpenOutline& opened) {
  writer.beginObject().member("displayName", opened.displayName()).key("faults");
  writer.array(application.faults(opened))
      .member("path", opened.storagePath())
      .member("persistentId", opened.persistentId())
      .member("saved", !opened.isDirty())
      .member("untitled", opened.isUntitled())
      .endObject();
}

}  // namespace

std::string headlessStatus(const Call& call) {
  const Application& application = call.application;
  std::string text;
  json::Writer writer(text);
  writer.beginObject().key("folders").array(application.folders().paths()).key("outlines").beginArray();
  for (const auto& opened : application.outlines()) describe(writer, application, *opened);
  writer.endArray()
      .member("process", getpid())
      .member("since", document::formatTimestamp(application.since()))
      .member("socket", platform::applicationSocketPath())
      .key("unreadable")
      .beginArray();
  for (const auto& [path, fault] : application.folders().unreadable())
    writer.beginObject().member("fault", fault).member("path", path).endObject();
  writer.endArray().member("version", application.settings().version).endObject();
  return text;
}

}  // namespace vell::headless::methods

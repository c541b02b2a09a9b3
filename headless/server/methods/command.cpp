#include <algorithm>

#include "headless/commands/commands.h"
#include "headless/editing/problem.h"
#include "headless/server/methods.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

/// Suggests a command that is spelled nearly like that, or is called nearly like that behind its colon.
std::string suggestion(const std::string& id) {
  std::vector<std::string_view> ids, names;
  for (const Command& command : commands()) {
    ids.push_back(command.id);
    names.push_back(command.id.substr(command.id.find(':') + 1));
  }
  const std::string near = didYouMean(id, ids);
  const auto named = std::find(names.begin(), names.end(), text::nearest(id, names));
  if (!near.empty() || named == names.end()) return near;
  const std::string_view meant = ids[static_cast<std::size_t>(named - names.begin())];
  return didYouMean(meant, {&meant, 1});
}

[[noreturn]] void failAsUnknown(const std::string& place, const std::string& id) {
  Params::fail(place, "a command that vell_get_commands (vell get commands) lists",
               json::quoted(id) + suggestion(id));
}

std::vector<const Command*> commandsParam(const Params& params) {
  std::vector<const Command*> found;
  for (const std::string& id : params.requiredStrings("ids")) {
    const Command* command = findCommand(id);
    if (command == nullptr) failAsUnknown("ids[" + std::to_string(found.size()) + "]", id);
    found.push_back(command);
  }
  return found;
}

}  // namespace

std::string commandList(const Call&) {
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const Command& command : commands())
    writer.beginObject().member("id", command.id).member("source", "Vell Menu").endObject();
  writer.endArray();
  return text;
}

std::string commandPerform(const Call& call) {
  const auto found = commandsParam(call.params);
  OpenOutline& opened = call.application.outlineOfEditor(call.params.string("editor"));
  return call.change(opened, [&](Transaction& transaction, const RowRefs&) {
    std::string text;
    json::Writer writer(text);
    writer.beginArray();
    for (const Command* command : found) {
      const bool performed = command->perform(transaction);
      writer.beginObject().member("id", command->id).member("performed", performed).endObject();
    }
    writer.endArray();
    return text;
  });
}

}  // namespace vell::headless::methods

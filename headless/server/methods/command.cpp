#include "headless/commands/commands.h"
#include "headless/editing/problem.h"
#include "headless/server/methods.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

[[noreturn]] void failAsUnknown(const std::string& place, const std::string& id) {
  std::vector<std::string_view> ids;
  for (const Command& command : commands()) ids.push_back(command.id);
  Params::fail(place, "a command that vell_get_commands (vell get commands) lists",
               json::quoted(id) + didYouMean(id, ids));
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
  Transaction transaction = call.begin(opened);
  std::string text;
  json::Writer writer(text);
  writer.beginArray();
  for (const Command* command : found) {
    const bool performed = command->perform(transaction);
    writer.beginObject().member("id", command->id).member("performed", performed).endObject();
  }
  writer.endArray();
  transaction.commit();
  return text;
}

}  // namespace vell::headless::methods

#include "headless/commands/commands.h"
#include "headless/server/methods.h"
#include "json/writer.h"

namespace vell::headless::methods {
namespace {

std::vector<const Command*> commandsParam(const Params& params) {
  std::vector<const Command*> found;
  for (const std::string& id : params.requiredStrings("ids")) {
    const Command* command = findCommand(id);
    if (command == nullptr)
      Params::fail("ids[" + std::to_string(found.size()) + "]", "a command that command.list names",
                   json::quoted(id));
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
  Transaction transaction = call.application.begin(opened);
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

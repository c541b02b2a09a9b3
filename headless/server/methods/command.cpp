#include "headless/commands/command.h"

#include "headless/server/methods.h"
#include "headless/server/request.h"

namespace vell::headless::methods {
namespace {

std::vector<const Command*> commandsParam(const Params& params) {
  std::vector<const Command*> found;
  for (const std::string& id : params.requiredStrings("ids")) {
    const Command* command = findCommand(id);
    if (command == nullptr)
      Params::fail("ids[" + std::to_string(found.size()) + "]", "a command that command.list names",
                   quote(id));
    found.push_back(command);
  }
  return found;
}

}  // namespace

std::string commandList(const Call&) {
  std::string text = "[";
  for (const Command& command : commands()) {
    if (text.size() > 1) text += ',';
    text += R"({"id":)" + quote(command.id) + R"(,"source":"Vell Menu"})";
  }
  return text + "]";
}

std::string commandPerform(const Call& call) {
  const auto found = commandsParam(call.params);
  Transaction transaction =
      call.application.begin(call.application.outlineOfEditor(call.params.string("editor")));
  std::string text = "[";
  for (const Command* command : found) {
    if (text.size() > 1) text += ',';
    const bool performed = command->perform(transaction);
    text += R"({"id":)" + quote(command->id) + R"(,"performed":)" + (performed ? "true}" : "false}");
  }
  transaction.commit();
  return text + "]";
}

}  // namespace vell::headless::methods

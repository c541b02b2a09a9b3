#include "cli/entry.h"

#include "cli/commands.h"
#include "cli/help.h"
#include "cli/parser.h"
#include "cli/shell_completion.h"
#include "ipc/client_error.h"
#include "outlines/location.h"
#include "platform/notices.h"
#include "platform/process.h"

namespace vell::cli {
namespace {

std::string faultOf(const Command& command, const ArgumentList& typed) {
  return command.check == nullptr ? "" : command.check(typed);
}

void perform(const CommandLine& line, Console& console) {
  if (line.action == Action::version) return console.out.write(outlines::cliVersion() + "\n");
  if (line.action == Action::help) return console.out.write(helpScreen(*line.command, line.path));
  if (!line.fault.empty()) throw UsageError(line.fault);
  line.command->run(line.arguments, console);
}

/// What happened to outlines meanwhile that nobody may miss.
void tellNotices(const CommandLine& line, Console& console) {
  const bool asks = line.action == Action::run && line.command != &vellCommand && line.command != &mcpCommand;
  if (!asks) return;
  for (const std::string& notice : platform::takeNotices()) console.say("Note from Vell: " + notice + "\n");
}

/// What is wrong, and how people start the application where that is what is wrong.
void report(const ipc::ClientError& error, Console& console) {
  console.say("Error: " + std::string(error.what()) + "\n");
  const std::string start = platform::startCommand();
  if (error.meansNotRunning() && !start.empty()) console.say("hint: start it with: " + start + "\n");
}

int run(const CommandLine& line, Console& console) {
  try {
    perform(line, console);
    console.out.flush();
    return ExitStatus::success;
  } catch (const UsageError& error) {
    console.say(usageReport(*line.command, line.path, error.what()));
    return ExitStatus::usage;
  } catch (const ClosedOutput&) {
    return ExitStatus::closedPipe;
  } catch (const ipc::ClientError& error) {
    report(error, console);
    return ExitStatus::failure;
  } catch (const std::exception& error) {
    console.say("Error: " + std::string(error.what()) + "\n");
    return ExitStatus::failure;
  }
}

}  // namespace

int Vell::main(const ArgumentList& arguments, Console& console) {
  if (!arguments.empty() && arguments.front() == completeOption)
    return complete(vellCommand, {arguments.begin() + 1, arguments.end()}, console);
  CommandLine line = parse(vellCommand, preprocessOutlineRefs(arguments));
  if (const std::string fault = faultOf(*line.command, arguments); !fault.empty()) line.fault = fault;
  const int status = run(line, console);
  tellNotices(line, console);
  return status;
}

}  // namespace vell::cli

#include "cli/entry.h"

#include "cli/commands.h"
#include "cli/help.h"
#include "cli/parser.h"
#include "outlines/location.h"

namespace vell::cli {
namespace {

void perform(const CommandLine& line, Console& console) {
  if (line.action == Action::version) return console.out.write(outlines::cliVersion() + "\n");
  if (line.action == Action::help) return console.out.write(helpScreen(*line.command, line.path));
  if (!line.fault.empty()) throw UsageError(line.fault);
  line.command->run(line.arguments, console);
}

}  // namespace

int Vell::main(const ArgumentList& arguments, Console& console) {
  const CommandLine line = parse(vellCommand, preprocessOutlineRefs(arguments));
  try {
    perform(line, console);
    console.out.flush();
    return ExitStatus::success;
  } catch (const UsageError& error) {
    console.say(usageReport(*line.command, line.path, error.what()));
    return ExitStatus::usage;
  } catch (const ClosedOutput&) {
    return ExitStatus::closedPipe;
  } catch (const std::exception& error) {
    console.say("Error: " + std::string(error.what()) + "\n");
    return ExitStatus::failure;
  }
}

}  // namespace vell::cli

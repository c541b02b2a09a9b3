#include "cli/entry.h"

#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/help.h"
#include "cli/parser.h"
#include "outlines/version.h"

namespace vell::cli {
namespace {

void perform(const Selection& selected, const ArgumentList& typed, Console& console) {
  if (selected.action == Action::version) return console.out.write(outlines::cliVersion() + "\n");
  const bool needsHelp = selected.action == Action::help && !selected.unknown;
  if (needsHelp) return console.out.write(helpScreen(*selected.command, selected.path));
  const Arguments arguments = parse(selected, typed);
  if (selected.command->run == nullptr)
    return console.out.write(helpScreen(*selected.command, selected.path));
  selected.command->run(arguments, console);
}

}  // namespace

int Vell::main(const ArgumentList& arguments, Console& console) {
  const Selection selected = select(vellCommand, preprocessOutlineRefs(arguments));
  try {
    perform(selected, arguments, console);
    console.out.flush();
    return ExitStatus::success;
  } catch (const UsageError& error) {
    console.say(usageReport(selected, error.what()));
    return ExitStatus::usage;
  } catch (const ClosedOutput&) {
    return ExitStatus::closedPipe;
  } catch (const std::exception& error) {
    console.say("Error: " + std::string(error.what()) + "\n");
    return ExitStatus::failure;
  }
}

}  // namespace vell::cli

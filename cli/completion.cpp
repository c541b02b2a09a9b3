#include "cli/completion.h"

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/help.h"
#include "cli/parser.h"

namespace vell::cli {

void runRoot(const Arguments& arguments, Console& console) {
  const auto shell = arguments.value(completionOption);
  if (!shell) return console.out.write(helpScreen(vellCommand, std::string(vellCommand.name)));
  if (*shell == "bash") return console.out.write(bashCompletion(vellCommand));
  if (*shell == "zsh") return console.out.write(zshCompletion(vellCommand));
  console.out.write(fishCompletion(vellCommand));
}

}  // namespace vell::cli

#include "cli/completion.h"
#include "cli/completion_words.h"

namespace vell::cli {
namespace {

constexpr std::string_view quote = "\\'";

constexpr std::string_view head = R"(# fish completion for vell

function __vell_at
    set -l at vell
    for word in (commandline -opc)[2..-1]
        switch "$at $word"
            case )";

constexpr std::string_view middle = R"(
                set at "$at $word"
        end
    end
    test "$at" = "$argv"
end

complete -c vell -f
)";

std::string line(const TreeEntry& entry, const std::string& rest) {
  return "complete -c vell -n '__vell_at " + entry.path + "'" + rest + "\n";
}

std::string explained(std::string_view explanation) {
  return explanation.empty() ? "" : " -d " + quoted(brief(explanation), quote);
}

std::string optionLine(const TreeEntry& entry, const Option& option) {
  std::string rest = " -l " + std::string(option.name.substr(2));
  if (!option.shortName.empty()) rest += " -s " + std::string(option.shortName.substr(1));
  if (option.takes != Takes::nothing) rest += option.file ? " -rF" : " -x";
  const std::string words = offeredValues(option);
  if (!words.empty()) rest += " -a '" + words + "'";
  return line(entry, rest + explained(option.help));
}

std::string argumentLine(const TreeEntry& entry, const Option& option) {
  const std::string words = offeredValues(option);
  if (option.file) return line(entry, " -F");
  return words.empty() ? "" : line(entry, " -a '" + words + "'");
}

}  // namespace

std::string fishCompletion(const Command& root) {
  std::string script(head);
  script += pathAlternatives(root, " ");
  script += middle;
  for (const TreeEntry& entry : wholeTree(root)) {
    for (const Command* next : entry.command->subcommands) {
      script += line(entry, " -a " + std::string(next->name) + explained(next->abstract));
    }
    for (const Option* option : entry.command->options) {
      if (option->positional()) script += argumentLine(entry, *option);
    }
    for (const Option* option : namedOptions(*entry.command)) script += optionLine(entry, *option);
  }
  return script;
}

}  // namespace vell::cli

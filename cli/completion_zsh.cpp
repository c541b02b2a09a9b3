#include "cli/completion.h"
#include "cli/completion_words.h"

namespace vell::cli {
namespace {

constexpr std::string_view quote = "'\\''";

constexpr std::string_view head = R"(#compdef vell

_vell() {
  local at=vell i
  local -a subcommands options values
  for ((i = 2; i < CURRENT; i++)); do
    case "$at $words[i]" in
      ()";

constexpr std::string_view tail = R"(  esac
  if [[ $words[CURRENT] == -* ]]; then
    _describe -o option options
    return
  fi
  if (( $#subcommands )); then _describe command subcommands; fi
  if (( $#values )); then compadd -- $values; fi
  if [[ -n $files ]]; then _files; fi
}

_vell "$@"
)";

std::string described(std::string_view name, std::string_view explanation) {
  return " " + quoted(std::string(name) + ":" + std::string(brief(explanation)), quote);
}

constexpr ValueCaseStyle valueStyle = {"    (", "_files; ", "compadd -- ", "; "};

std::string wordCases(const Command& root) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    std::string subcommands, options, values, files;
    for (const Command* next : entry.command->subcommands)
      subcommands += described(next->name, next->abstract);
    for (const Option* option : namedOptions(*entry.command))
      options += described(option->name, option->help);
    for (const Option* option : entry.command->options) {
      if (option->positional()) values += " " + offeredValues(*option);
      if (option->positional() && option->file) files = " files=yes";
    }
    cases += "    ('" + entry.path + "') subcommands=(" + subcommands + " ) options=(" + options +
             " ) values=(" + values + " )" + files + " ;;\n";
  }
  return cases;
}

}  // namespace

std::string zshCompletion(const Command& root) {
  std::string script(head);
  script += pathAlternatives(root, " | ") + ")\n        at=\"$at $words[i]\" ;;\n    esac\n  done\n";
  script += "  case \"$at $words[CURRENT-1]\" in\n" + valueCases(root, valueStyle) + "  esac\n";
  script += "  local files=\n  case \"$at\" in\n" + wordCases(root);
  return script.append(tail);
}

}  // namespace vell::cli

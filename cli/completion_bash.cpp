#include "cli/completion.h"
#include "cli/completion_words.h"

namespace vell::cli {
namespace {

constexpr std::string_view head = R"(# bash completion for vell

_vell_files() {
  compopt -o filenames 2>/dev/null
  COMPREPLY+=($(compgen -f -- "$1"))
}

_vell() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} at=vell words= files= i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "$at ${COMP_WORDS[i]}" in
      )";

constexpr std::string_view tail = R"(  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
  if [[ -n $files ]]; then _vell_files "$current"; fi
}

complete -F _vell vell
)";

constexpr ValueCaseStyle valueStyle = {"    ", "_vell_files \"$current\"; ", "COMPREPLY=($(compgen -W '",
                                       "' -- \"$current\")); "};

std::string wordCases(const Command& root) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    std::string words, files;
    for (const Command* next : entry.command->subcommands) words += std::string(next->name) + " ";
    for (const Option* option : entry.command->options) {
      if (option->positional()) words += offeredValues(*option) + " ";
      if (option->positional() && option->file) files = "; files=yes";
    }
    for (const Option* option : namedOptions(*entry.command)) words += std::string(option->name) + " ";
    cases += "    '" + entry.path + "') words='" + words + "'" + files + " ;;\n";
  }
  return cases;
}

}  // namespace

std::string bashCompletion(const Command& root) {
  std::string script(head);
  script += pathAlternatives(root, " | ") + ")\n        at=\"$at ${COMP_WORDS[i]}\" ;;\n    esac\n  done\n";
  script += "  case \"$at $previous\" in\n" + valueCases(root, valueStyle) + "  esac\n";
  script += "  case \"$at\" in\n" + wordCases(root);
  return script.append(tail);
}

}  // namespace vell::cli

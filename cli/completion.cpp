#include "cli/completion.h"

namespace vell::cli {
namespace {

// What the scripts of all shells are made of.

/// The text with its first `mark` replaced.
std::string filled(std::string text, std::string_view mark, std::string_view content) {
  return text.replace(text.find(mark), mark.size(), content);
}

/// The text in single quotes, in which a single quote is written as `quote`.
std::string quoted(std::string_view text, std::string_view quote) {
  std::string result = "'";
  for (const char c : text) c == '\'' ? result.append(quote) : result.append(1, c);
  return result + "'";
}

/// An explanation cut after its first sentence.
std::string_view brief(std::string_view text) { return text.substr(0, text.find(". ")); }

/// The values worth offering for an option, separated by blanks; files are not among them.
std::string offeredValues(const Option& option) {
  if (option.value == "row-ref" || option.value == "row-refs") return "@selection @focused";
  std::string words;
  for (const std::string_view choice : option.choices) words.append(words.empty() ? "" : " ").append(choice);
  return words;
}

/// `'vell get' | 'vell get outline' | …`: every command but the root, as alternatives of a case.
std::string commandAlternatives(const Command& root, std::string_view separator) {
  std::string alternatives;
  for (const TreeEntry& entry : wholeTree(root)) {
    if (entry.command == &root) continue;
    if (!alternatives.empty()) alternatives += separator;
    alternatives += "'" + entry.path + "'";
  }
  return alternatives;
}

/// A case for each option that takes a value, in bash and zsh: `start` stands before the names of the option
/// behind its command's, `files` completes files, `words` the words in the place of its "%".
std::string valueCases(const Command& root, std::string_view start, std::string_view files,
                       const std::string& words) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    for (const Option* option : namedOptions(*entry.command)) {
      if (option->takes == Takes::nothing) continue;
      cases.append("    ").append(start).append("'" + entry.path + " ").append(option->name).append("'");
      if (!option->shortName.empty())
        cases.append(" | '" + entry.path + " ").append(option->shortName).append("'");
      cases += ") ";
      if (option->file) cases += files;
      const std::string offered = offeredValues(*option);
      if (!offered.empty()) cases += filled(words, "%", offered);
      cases += "return ;;\n";
    }
  }
  return cases;
}

// Bash.

constexpr const char* bashScript = R"(# bash completion for vell

_vell_files() {
  compopt -o filenames 2>/dev/null
  COMPREPLY+=($(compgen -f -- "$1"))
}

_vell() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} at=vell words= files= i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "$at ${COMP_WORDS[i]}" in
      %COMMANDS)
        at="$at ${COMP_WORDS[i]}" ;;
    esac
  done
  case "$at $previous" in
%VALUES  esac
  case "$at" in
%WORDS  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
  if [[ -n $files ]]; then _vell_files "$current"; fi
}

complete -F _vell vell
)";

std::string bashWords(const Command& root) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    std::string words, files;
    for (const Command* next : entry.command->subcommands) words += std::string(next->name) + " ";
    if (entry.command == &root) words.append(helpCommand).append(" ");
    for (const Option* option : entry.command->options) {
      if (option->positional()) words += offeredValues(*option) + " ";
      if (option->positional() && option->file) files = "; files=yes";
    }
    for (const Option* option : namedOptions(*entry.command)) words += std::string(option->name) + " ";
    cases += "    '" + entry.path + "') words='" + words + "'" + files + " ;;\n";
  }
  return cases;
}

std::string bashCompletion(const Command& root) {
  const std::string values =
      valueCases(root, "", "_vell_files \"$current\"; ", "COMPREPLY=($(compgen -W '%' -- \"$current\")); ");
  std::string script = filled(bashScript, "%COMMANDS", commandAlternatives(root, " | "));
  return filled(filled(script, "%VALUES", values), "%WORDS", bashWords(root));
}

// Zsh.

constexpr const char* zshScript = R"(#compdef vell

_vell() {
  local at=vell i
  local -a subcommands options values
  for ((i = 2; i < CURRENT; i++)); do
    case "$at $words[i]" in
      (%COMMANDS)
        at="$at $words[i]" ;;
    esac
  done
  case "$at $words[CURRENT-1]" in
%VALUES  esac
  local files=
  case "$at" in
%WORDS  esac
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
  return " " + quoted(std::string(name) + ":" + std::string(brief(explanation)), "'\\''");
}

std::string zshWords(const Command& root) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    std::string subcommands, options, values, files;
    for (const Command* next : entry.command->subcommands)
      subcommands += described(next->name, next->abstract);
    if (entry.command == &root) subcommands += described(helpCommand, helpOption.help);
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

std::string zshCompletion(const Command& root) {
  const std::string values = valueCases(root, "(", "_files; ", "compadd -- %; ");
  std::string script = filled(zshScript, "%COMMANDS", commandAlternatives(root, " | "));
  return filled(filled(script, "%VALUES", values), "%WORDS", zshWords(root));
}

// Fish.

constexpr const char* fishScript = R"(# fish completion for vell

function __vell_at
    set -l at vell
    for word in (commandline -opc)[2..-1]
        switch "$at $word"
            case %COMMANDS
                set at "$at $word"
        end
    end
    test "$at" = "$argv"
end

complete -c vell -f
%WORDS)";

std::string explained(std::string_view explanation) {
  return explanation.empty() ? "" : " -d " + quoted(brief(explanation), "\\'");
}

/// How an option or argument is completed; empty where nothing is known of an argument.
std::string fishOption(const Option& option) {
  std::string line;
  if (option.positional()) {
    if (option.file) return " -F";
  } else {
    line.append(" -l ").append(option.name.substr(2));
    if (!option.shortName.empty()) line.append(" -s ").append(option.shortName.substr(1));
    if (option.takes != Takes::nothing) line += option.file ? " -rF" : " -x";
  }
  const std::string words = offeredValues(option);
  if (!words.empty()) line += " -a '" + words + "'";
  return option.positional() ? line : line + explained(option.help);
}

std::string fishCompletion(const Command& root) {
  std::string lines;
  for (const TreeEntry& entry : wholeTree(root)) {
    const auto add = [&](const std::string& completion) {
      if (!completion.empty())
        lines += "complete -c vell -n '__vell_at " + entry.path + "'" + completion + "\n";
    };
    for (const Command* next : entry.command->subcommands) {
      add(" -a " + std::string(next->name) + explained(next->abstract));
    }
    if (entry.command == &root) add(" -a " + std::string(helpCommand) + explained(helpOption.help));
    for (const Option* option : entry.command->options) {
      if (option->positional()) add(fishOption(*option));
    }
    for (const Option* option : namedOptions(*entry.command)) add(fishOption(*option));
  }
  const std::string script = filled(fishScript, "%COMMANDS", commandAlternatives(root, " "));
  return filled(script, "%WORDS", lines);
}

}  // namespace

std::string completionScript(const Command& root, std::string_view shell) {
  if (shell == "bash") return bashCompletion(root);
  if (shell == "zsh") return zshCompletion(root);
  return fishCompletion(root);
}

}  // namespace vell::cli

#include <algorithm>

#include "cli/commands.h"
#include "cli/entry.h"
#include "cli/parser.h"

namespace vell::cli {
namespace {

// A group and its command stand in the first two arguments; what is rewritten begins behind them.
constexpr std::size_t commandWords = 2;

/// The command in the first two arguments whose plain arguments belong behind an option; null for any other.
const Command* rewrittenCommand(const ArgumentList& arguments) {
  if (arguments.size() < commandWords) return nullptr;
  const Command* group = findSubcommand(vellCommand, arguments[0]);
  const Command* command = group == nullptr ? nullptr : findSubcommand(*group, arguments[1]);
  return command == nullptr || command->plainArguments == nullptr ? nullptr : command;
}

/// The names of all options of such commands that take so many values.
OptionNames namesOf(Takes takes) {
  OptionNames names;
  for (const TreeEntry& entry : wholeTree(vellCommand)) {
    if (entry.command->plainArguments == nullptr) continue;
    for (const Option* option : entry.command->options) {
      if (option->takes == takes) names.insert({option->name, option->shortName});
    }
  }
  return names;
}

/// Appends the option and the references behind it. One that looks like an option is attached to the name, so
/// that it is read as a value.
void appendReferences(ArgumentList& arguments, const std::string& option, const ArgumentList& references) {
  bool open = false;
  for (const std::string& reference : references) {
    const bool attached = isOptionToken(reference);
    if (!attached && !open) arguments.push_back(option);
    arguments.push_back(attached ? option + "=" + reference : reference);
    open = !attached;
  }
}

}  // namespace

std::optional<std::size_t> optionSpan(std::size_t at, const ArgumentList& arguments,
                                      const OptionNames& valueOptions, const OptionNames& multiValueOptions) {
  if (at >= arguments.size() || !isOptionToken(arguments[at]) || arguments[at] == "--") return std::nullopt;
  const bool followed = at + 1 < arguments.size();
  if (followed && valueOptions.contains(arguments[at])) return at + 2;
  if (followed && multiValueOptions.contains(arguments[at])) {
    const auto from = arguments.begin() + static_cast<std::ptrdiff_t>(at) + 1;
    return static_cast<std::size_t>(std::find_if(from, arguments.end(), isOptionToken) - arguments.begin());
  }
  return at + 1;
}

ArgumentList Vell::preprocessOutlineRefs(const ArgumentList& arguments) {
  const Command* command = rewrittenCommand(arguments);
  if (command == nullptr) return arguments;
  const OptionNames valueOptions = namesOf(Takes::one), multiValueOptions = namesOf(Takes::list);
  ArgumentList result(arguments.begin(), arguments.begin() + commandWords);
  ArgumentList references;
  std::size_t i = commandWords;
  while (i < arguments.size() && arguments[i] != "--") {
    if (const auto end = optionSpan(i, arguments, valueOptions, multiValueOptions)) {
      for (; i < *end; ++i) result.push_back(arguments[i]);
    } else {
      const bool first = references.empty();
      if (first && findSubcommand(*command, arguments[i]) != nullptr) return arguments;
      references.push_back(arguments[i++]);
    }
  }
  const auto behindTerminator = static_cast<std::ptrdiff_t>(std::min(i + 1, arguments.size()));
  references.insert(references.end(), arguments.begin() + behindTerminator, arguments.end());
  appendReferences(result, std::string(command->plainArguments->name), references);
  return result;
}

}  // namespace vell::cli

#include "cli/parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/errors.h"
#include "cli/help.h"
#include "cli/scanner.h"
#include "cli/suggest.h"

namespace vell::cli {
namespace {

/// The names under which an option stands in the library's tables. Positional arguments are options there
/// too: which token is one has been decided before, with rules that the library does not know.
std::string libraryName(const Option& option) {
  return option.positional() ? "--argument-" + std::string(option.name) : std::string(option.name);
}

[[noreturn]] void refuseOption(const Token& token, const Command& command) {
  std::string hint = didYouMean(token.name, command);
  const bool takesArguments = std::any_of(command.options.begin(), command.options.end(),
                                          [](const Option* option) { return option->positional(); });
  if (hint.empty() && takesArguments) hint = " Arguments that begin with '-' go behind '--'.";
  throw UsageError("Unknown option '" + std::string(token.name) + "'." + hint);
}

/// Hands the tokens of a command line to the library as pairs of a name and one value.
class Pairs {
 public:
  explicit Pairs(const Command& command) : command_(command) {}

  std::vector<std::string> take(std::span<const std::string> arguments) {
    while (!arguments.empty()) {
      const Token token = scan(command_, arguments);
      arguments = arguments.subspan(token.size());
      if (token.kind == Token::Kind::terminator) break;
      token.kind == Token::Kind::option ? takeOption(token) : takeArgument(std::string(token.name));
    }
    for (const std::string& argument : arguments) takeArgument(argument);
    return std::move(pairs_);
  }

 private:
  void add(const Option& option, std::string value) {
    pairs_.push_back(libraryName(option));
    pairs_.push_back(std::move(value));
  }

  void takeOption(const Token& token) {
    if (token.option == nullptr) refuseOption(token, command_);
    const Option& option = *token.option;
    if (option.takes == Takes::nothing) {
      if (token.attached) throw UsageError("The option '" + std::string(option.name) + "' takes no value.");
      pairs_.push_back(libraryName(option));
      return;
    }
    if (token.attached) add(option, std::string(*token.attached));
    for (const std::string& value : token.values) add(option, value);
    const bool missing = !token.attached && token.values.empty() && option.takes != Takes::list;
    if (missing) throw UsageError("Missing value for '" + optionLabel(option) + "'.");
  }

  void takeArgument(std::string argument) {
    for (const Option* option : command_.options) {
      if (!option->positional()) continue;
      if (!option->repeats() && std::find(filled_.begin(), filled_.end(), option) != filled_.end()) continue;
      filled_.push_back(option);
      return add(*option, std::move(argument));
    }
    throw UsageError("Unexpected argument '" + argument + "'.");
  }

  const Command& command_;
  std::vector<std::string> pairs_;
  std::vector<const Option*> filled_;
};

std::string choiceFault(const Option& option, const std::string& value) {
  if (std::find(option.choices.begin(), option.choices.end(), value) != option.choices.end()) return {};
  std::string fault =
      "The value '" + value + "' is invalid for '" + optionLabel(option) + "'. Choose one of ";
  for (const std::string_view choice : option.choices) {
    if (choice != option.choices.front()) fault += choice == option.choices.back() ? " or " : ", ";
    fault += choice;
  }
  throw UsageError(fault + ".");
}

CLI::Option* declare(CLI::App& app, const Option& option) {
  if (option.takes == Takes::nothing) return app.add_flag(libraryName(option));
  CLI::Option* declared = app.add_option(libraryName(option));
  // More values than one are counted here afterwards: the library would split "[a,b]" into two.
  declared->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->expected(1, -1);
  if (!option.choices.empty()) {
    declared->check([&option](const std::string& value) { return choiceFault(option, value); });
  }
  return declared;
}

[[noreturn]] void refuseAbsence(const Option& option) {
  if (!option.missing.empty()) throw UsageError(std::string(option.missing));
  throw UsageError("Missing required '" + optionLabel(option) + "'.");
}

void collect(const Option& option, const CLI::Option& declared, Arguments& arguments) {
  if (declared.empty()) return;
  const bool once = option.takes == Takes::one;
  if (once && declared.count() > 1) {
    throw UsageError("The option '" + std::string(option.name) + "' can be given only once.");
  }
  arguments.add(option, option.takes == Takes::nothing ? std::vector<std::string>{} : declared.results());
}

Arguments parseWith(const Command& command, std::vector<std::string> pairs) {
  Arguments arguments;
  // Setting the library up takes longer than all else in a run, so it is spared where nothing was given.
  if (pairs.empty()) return arguments;
  CLI::App app;
  app.set_help_flag();
  std::vector<const CLI::Option*> declared;
  for (const Option* option : command.options) declared.push_back(declare(app, *option));
  std::reverse(pairs.begin(), pairs.end());  // the library takes its arguments from the back
  app.parse(std::move(pairs));
  for (std::size_t i = 0; i < declared.size(); ++i) collect(*command.options[i], *declared[i], arguments);
  return arguments;
}

void requireAll(const Command& command, const Arguments& arguments) {
  for (const Option* option : command.options) {
    if (option->required && arguments.values(*option).empty()) refuseAbsence(*option);
  }
}

}  // namespace

Arguments parse(const Selection& selection, const ArgumentList& typed) {
  const Command& command = *selection.command;
  if (selection.unknown) {
    throw UsageError("Unknown command '" + *selection.unknown + "'." +
                     didYouMean(*selection.unknown, command));
  }
  if (command.check != nullptr) command.check(typed);
  try {
    Arguments arguments = parseWith(command, Pairs(command).take(selection.rest));
    requireAll(command, arguments);
    return arguments;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
}

}  // namespace vell::cli

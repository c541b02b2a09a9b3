#include "cli/parser.h"

#include <algorithm>

#include "cli/help.h"
#include "text/edit_distance.h"

namespace vell::cli {
namespace {

/// " Did you mean '…'?" where a candidate is near the word; else empty.
std::string didYouMean(std::string_view word, std::span<const std::string_view> candidates) {
  const std::string_view meant = text::nearest(word, candidates);
  return meant.empty() ? "" : " Did you mean '" + std::string(meant) + "'?";
}

class Parser {
 public:
  explicit Parser(const Command& root)
      : root_(root), line_{&root, std::string(root.name), Action::run, {}, {}} {}

  CommandLine parse(const ArgumentList& words) {
    split(words);
    for (const Token& token : tokens_) token.name.empty() ? giveArgument(token) : giveOption(token);
    for (const Option* option : line_.command->options) check(*option);
    const bool isGroup = line_.command->run == nullptr;
    if (isGroup && line_.fault.empty() && line_.action == Action::run) line_.action = Action::help;
    return std::move(line_);
  }

 private:
  /// Finds the command, and splits what else is there into tokens, as the options of the command say that is
  /// reached so far.
  void split(Words words) {
    while (!words.empty() && words.front() != terminator) {
      const std::string& word = words.front();
      words = words.subspan(1);
      if (isOptionOf(*line_.command, word)) {
        words = words.subspan(takeOption(word, words));
      } else if (line_.command->subcommands.empty()) {
        tokens_.push_back({{}, {word}});
      } else if (word == helpCommand) {
        line_.action = Action::help;
      } else if (!descend(word)) {
        return refuseCommand(word);
      }
    }
    for (const std::string& word : words.subspan(words.empty() ? 0 : 1)) tokens_.push_back({{}, {word}});
  }

  bool descend(const std::string& word) {
    const Command* next = findSubcommand(*line_.command, word);
    if (next == nullptr) return false;
    line_.command = next;
    line_.path += " " + word;
    return true;
  }

  /// Returns how many of the words behind the option are its values.
  std::size_t takeOption(const std::string& word, Words rest) {
    Token token = splitAttached(word);
    const Option* option = findOption(*line_.command, token.name);
    if (option == &helpOption) line_.action = Action::help;
    if (option == &versionOption && line_.action == Action::run) line_.action = Action::version;
    const bool takesMore = option != nullptr && token.values.empty();
    const std::size_t count = takesMore ? followingValues(*option, rest) : 0;
    token.values.insert(token.values.end(), rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(count));
    tokens_.push_back(std::move(token));
    return count;
  }

  void giveOption(const Token& token) {
    const Option* option = findOption(*line_.command, token.name);
    if (option == nullptr) return refuseOption(token.name);
    const bool empty = token.values.empty();
    if (option->takes == Takes::nothing && !empty) {
      refuse("The option '" + token.name + "' takes no value.");
    } else if (empty && (option->takes == Takes::one || option->takes == Takes::each)) {
      refuse("Missing value for '" + optionLabel(*option) + "'.");
    }
    line_.arguments.add(*option, token.values);
  }

  void giveArgument(const Token& token) {
    for (const Option* option : line_.command->options) {
      if (!option->positional() || (!option->repeats() && line_.arguments.has(*option))) continue;
      return line_.arguments.add(*option, token.values);
    }
    refuse("Unexpected argument '" + token.values.front() + "'." +
           (takesArguments() ? " Text with blanks goes in quotes." : ""));
  }

  bool takesArguments() const {
    const auto& options = line_.command->options;
    return std::any_of(options.begin(), options.end(),
                       [](const Option* option) { return option->positional(); });
  }

  void check(const Option& option) {
    const auto values = line_.arguments.values(option);
    for (const std::string& value : values) checkChoice(option, value);
    if (!option.required || !values.empty()) return;
    refuse(option.missing.empty() ? "Missing required '" + optionLabel(option) + "'."
                                  : std::string(option.missing));
  }

  void checkChoice(const Option& option, const std::string& value) {
    const auto& choices = option.choices;
    if (choices.empty() || std::find(choices.begin(), choices.end(), value) != choices.end()) return;
    std::string fault =
        "The value '" + value + "' is invalid for '" + optionLabel(option) + "'. Choose one of ";
    for (const std::string_view choice : choices) {
      if (choice != choices.front()) fault += choice == choices.back() ? " or " : ", ";
      fault += choice;
    }
    refuse(fault + "." + didYouMean(value, choices));
  }

  void refuseCommand(const std::string& word) {
    if (line_.action == Action::help) line_.action = Action::run;
    std::vector<std::string_view> names;
    for (const Command* next : line_.command->subcommands) names.push_back(next->name);
    if (line_.command == &root_) names.push_back(helpCommand);
    refuse("Unknown command '" + word + "'." + didYouMean(word, names));
  }

  void refuseOption(const std::string& name) {
    std::vector<std::string_view> names;
    for (const Option* option : namedOptions(*line_.command)) names.push_back(option->name);
    std::string hint = didYouMean(name, names);
    if (hint.empty() && takesArguments()) hint = " Arguments that begin with '-' go behind '--'.";
    refuse("Unknown option '" + name + "'." + hint);
  }

  /// Keeps the first fault.
  void refuse(const std::string& fault) {
    if (line_.fault.empty()) line_.fault = fault;
  }

  const Command& root_;
  CommandLine line_;
  std::vector<Token> tokens_;
};

}  // namespace

void Arguments::add(const Option& option, const std::vector<std::string>& values) {
  auto& all = given_[&option];
  all.insert(all.end(), values.begin(), values.end());
}

std::optional<std::string> Arguments::value(const Option& option) const {
  const auto all = values(option);
  if (all.empty()) return std::nullopt;
  return all.back();
}

std::vector<std::string> Arguments::values(const Option& option) const {
  const auto given = given_.find(&option);
  return given == given_.end() ? std::vector<std::string>{} : given->second;
}

bool isOptionToken(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

bool isOptionOf(const Command& command, const std::string& word) {
  const bool isText = word.starts_with("- ") && command.subcommands.empty();
  return isOptionToken(word) && !isText;
}

Token splitAttached(const std::string& word) {
  const std::size_t end = word.starts_with("--") ? word.find('=') : 2;
  if (end >= word.size()) return {word, {}};
  return {word.substr(0, end), {word.substr(end + (word[end] == '=' ? 1 : 0))}};
}

std::size_t followingValues(const Option& option, Words rest) {
  if (option.takes == Takes::nothing) return 0;
  if (option.takes != Takes::list) return std::min<std::size_t>(rest.size(), 1);
  return static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), isOptionToken) - rest.begin());
}

CommandLine parse(const Command& root, const ArgumentList& words) { return Parser(root).parse(words); }

}  // namespace vell::cli

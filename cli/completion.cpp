#include "cli/completion.h"

#include <algorithm>
#include <span>

#include "cli/options.h"
#include "cli/parser.h"

namespace vell::cli {
namespace {

// Where the cursor stands.

/// What the words in front of the one that is typed come to.
struct Place {
  const Command* command;
  bool helped = false;        // "help" is among them
  bool optionsEnded = false;  // by "--"
  /// The option that the last of the words are about, where it takes more.
  const Option* open = nullptr;
  std::size_t arguments = 0;
  std::optional<std::string> outline = {};

  bool takesSubcommand() const { return arguments == 0 && !optionsEnded; }
};

class Walk {
 public:
  explicit Walk(const Command& root) : place_{&root} {}

  Place along(Words words) {
    while (!words.empty()) {
      const std::string& word = words.front();
      words = words.subspan(1);
      if (place_.optionsEnded || !isOptionOf(*place_.command, word)) {
        takePlain(word);
      } else if (word == terminator) {
        place_.optionsEnded = true;
      } else {
        words = words.subspan(takeOption(word, words));
      }
    }
    return place_;
  }

 private:
  void takePlain(const std::string& word) {
    const Command& command = *place_.command;
    const Command* next = place_.takesSubcommand() ? findSubcommand(command, word) : nullptr;
    if (next != nullptr) {
      place_.command = next;
    } else if (word == helpCommand && !command.subcommands.empty() && command.plainArguments == nullptr) {
      place_.helped = true;
    } else {
      ++place_.arguments;
    }
  }

  std::size_t takeOption(const std::string& word, Words rest) {
    const Token token = splitAttached(word);
    const Option* option = findOption(*place_.command, token.name);
    const bool attached = !token.values.empty();
    if (option == nullptr || attached) {
      if (option == &outlineOption) place_.outline = token.values.front();
      return 0;
    }
    const std::size_t count = followingValues(*option, rest);
    const bool wanting = option->takes == Takes::list || (option->takes != Takes::nothing && count == 0);
    if (wanting && count == rest.size()) place_.open = option;
    if (option == &outlineOption && count > 0) place_.outline = rest.front();
    return count;
  }

  Place place_;
};

/// The option or argument whose value the next plain word is; null where none is left.
const Option* nextArgument(const Place& place) {
  if (place.command->plainArguments != nullptr) return place.command->plainArguments;
  std::size_t taken = place.arguments;
  for (const Option* option : place.command->options) {
    if (option->positional() && (option->repeats() || taken-- == 0)) return option;
  }
  return nullptr;
}

// What may stand there.

/// An explanation cut after its first sentence.
std::string brief(std::string_view text) {
  const std::string_view first = text.substr(0, text.find(". "));
  return std::string(first.ends_with('.') ? first.substr(0, first.size() - 1) : first);
}

Candidates optionNames(const Place& place) {
  Candidates candidates;
  for (const Option* option : namedOptions(*place.command))
    candidates.push_back({std::string(option->name), brief(option->help)});
  return candidates;
}

/// The values of an option that are attached to its name, in one word: "--shape=flat".
std::optional<Candidates> attachedValues(const Place& place, const std::string& word) {
  const Token token = splitAttached(word);
  const Option* option = findOption(*place.command, token.name);
  if (option == nullptr || option->takes == Takes::nothing || token.values.empty()) return optionNames(place);
  const std::string& text = token.values.front();
  auto candidates = valuesFor({*option, text, place.outline});
  if (!candidates) return std::nullopt;
  for (Candidate& candidate : *candidates) candidate.word.insert(0, word, 0, word.size() - text.size());
  return candidates;
}

Candidates subcommands(const Place& place) {
  Candidates candidates;
  if (!place.takesSubcommand()) return candidates;
  for (const Command* next : place.command->subcommands)
    candidates.push_back({std::string(next->name), brief(next->abstract)});
  return candidates;
}

/// A command, or an argument of the one that was reached.
std::optional<Candidates> plainWords(const Command& root, const Place& place, const std::string& word) {
  Candidates candidates = subcommands(place);
  if (place.helped) return candidates;
  if (place.command == &root && place.takesSubcommand())
    candidates.push_back({std::string(helpCommand), brief(helpOption.help)});
  if (const Option* argument = nextArgument(place)) {
    const auto values = valuesFor({*argument, word, place.outline});
    if (!values) return std::nullopt;
    candidates.insert(candidates.end(), values->begin(), values->end());
  }
  return candidates.empty() && !place.optionsEnded ? optionNames(place) : candidates;
}

}  // namespace

std::optional<Candidates> candidatesFor(const Command& root, const ArgumentList& words) {
  const std::string& word = words.back();
  const Place place = Walk(root).along(Words(words).first(words.size() - 1));
  const bool named = !place.optionsEnded && word.starts_with('-');
  if (place.open != nullptr && !(named && place.open->takes == Takes::list))
    return valuesFor({*place.open, word, place.outline});
  return named ? attachedValues(place, word) : plainWords(root, place, word);
}

}  // namespace vell::cli

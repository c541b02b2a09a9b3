#include "cli/selection.h"

#include <algorithm>

#include "cli/scanner.h"

namespace vell::cli {
namespace {

constexpr std::string_view helpWord = "help";

class Walk {
 public:
  explicit Walk(const Command& root) : selection_{&root, std::string(root.name), Action::run, {}, {}} {}

  Selection follow(std::span<const std::string> arguments) {
    const bool asksForHelp = !arguments.empty() && arguments.front() == helpWord;
    if (asksForHelp) arguments = arguments.subspan(1);
    while (!arguments.empty() && !selection_.unknown) {
      const Token token = scan(*selection_.command, arguments);
      if (token.kind == Token::Kind::terminator) break;
      if (token.kind == Token::Kind::option) {
        takeOption(token, arguments);
      } else if (!descend(token.name)) {
        takeArgument(arguments.front());
      }
      arguments = arguments.subspan(token.size());
    }
    selection_.rest.insert(selection_.rest.end(), arguments.begin(), arguments.end());
    if (asksForHelp) selection_.action = Action::help;
    return std::move(selection_);
  }

 private:
  void takeOption(const Token& token, std::span<const std::string> arguments) {
    if (token.option == &helpOption) selection_.action = Action::help;
    if (token.option == &versionOption && selection_.action == Action::run)
      selection_.action = Action::version;
    const auto covered = arguments.first(token.size());
    selection_.rest.insert(selection_.rest.end(), covered.begin(), covered.end());
  }

  bool descend(std::string_view word) {
    if (sawArgument_) return false;
    for (const Command* next : selection_.command->subcommands) {
      if (next->name != word) continue;
      selection_.command = next;
      selection_.path.append(" ").append(word);
      return true;
    }
    return false;
  }

  void takeArgument(const std::string& argument) {
    if (!selection_.command->subcommands.empty()) {
      selection_.unknown = argument;
    }
    sawArgument_ = true;
    selection_.rest.push_back(argument);
  }

  Selection selection_;
  bool sawArgument_ = false;
};

}  // namespace

Selection select(const Command& root, const ArgumentList& arguments) { return Walk(root).follow(arguments); }

}  // namespace vell::cli

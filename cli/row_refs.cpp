#include "cli/row_refs.h"

#include <algorithm>
#include <utility>

namespace vell::cli {
namespace {

// Both commands stand in the first two arguments; what is rewritten begins behind them.
constexpr std::size_t commandWords = 2;

bool contains(const ArgumentList& list, const std::string& token) {
  return std::find(list.begin(), list.end(), token) != list.end();
}

const ArgumentList& valueOptions() {
  static const ArgumentList names{"--outline", "--shape", "--output", "-o", "--path"};
  return names;
}

const ArgumentList& multiValueOptions() {
  static const ArgumentList names{"--refs"};
  return names;
}

/// The first argument that is no option's value; none when there is none before a "--".
const std::string* firstPositional(const ArgumentList& arguments) {
  std::size_t i = commandWords;
  while (i < arguments.size() && arguments[i] != "--") {
    const auto end = optionSpan(i, arguments, valueOptions(), multiValueOptions());
    if (!end) return &arguments[i];
    i = *end;
  }
  return nullptr;
}

ArgumentList rewritten(const ArgumentList& arguments, const std::string& optionName) {
  const auto end = std::find(arguments.begin() + commandWords, arguments.end(), "--");
  const auto stop = static_cast<std::size_t>(end - arguments.begin());
  ArgumentList result(arguments.begin(), arguments.begin() + commandWords);
  ArgumentList references;
  std::size_t i = commandWords;
  while (i < stop) {
    if (const auto next = optionSpan(i, arguments, valueOptions(), multiValueOptions())) {
      for (; i < *next; ++i) result.push_back(arguments[i]);
    } else {
      references.push_back(arguments[i++]);
    }
  }
  if (i < arguments.size() && arguments[i] == "--") ++i;
  for (; i < arguments.size(); ++i) references.push_back(arguments[i]);
  if (!references.empty()) {
    result.push_back(optionName);
    result.insert(result.end(), references.begin(), references.end());
  }
  return result;
}

}  // namespace

bool isOptionToken(const std::string& token) { return token.size() > 1 && token.front() == '-'; }

std::optional<std::size_t> optionSpan(std::size_t at, const ArgumentList& arguments,
                                      const ArgumentList& valueOptions,
                                      const ArgumentList& multiValueOptions) {
  if (at >= arguments.size() || !isOptionToken(arguments[at]) || arguments[at] == "--") return std::nullopt;
  const bool followed = at + 1 < arguments.size();
  if (followed && contains(valueOptions, arguments[at])) return at + 2;
  if (followed && contains(multiValueOptions, arguments[at])) {
    const auto from = arguments.begin() + static_cast<std::ptrdiff_t>(at) + 1;
    return static_cast<std::size_t>(std::find_if(from, arguments.end(), isOptionToken) - arguments.begin());
  }
  return at + 1;
}

ArgumentList preprocessOutlineRefs(const ArgumentList& arguments) {
  if (arguments.size() < commandWords) return arguments;
  const bool observe = arguments[0] == "observe";
  if ((arguments[0] != "get" && !observe) || arguments[1] != "outline") return arguments;
  const std::string* first = firstPositional(arguments);
  if (first != nullptr && *first == "rows") return arguments;
  return rewritten(arguments, observe ? "--path" : "--refs");
}

}  // namespace vell::cli

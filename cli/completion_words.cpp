#include "cli/completion_words.h"

namespace vell::cli {

std::string offeredValues(const Option& option) {
  if (option.value == "row-ref" || option.value == "row-refs") return "@selection @focused";
  std::string words;
  for (const std::string_view choice : option.choices) words.append(words.empty() ? "" : " ").append(choice);
  return words;
}

std::string quoted(std::string_view text, std::string_view quote) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'') {
      result += quote;
    } else {
      result += c;
    }
  }
  return result + "'";
}

std::string_view brief(std::string_view text) { return text.substr(0, text.find(". ")); }

std::string pathAlternatives(const Command& root, std::string_view separator) {
  std::string alternatives;
  for (const TreeEntry& entry : wholeTree(root)) {
    if (entry.command == &root) continue;
    if (!alternatives.empty()) alternatives += separator;
    alternatives += "'" + entry.path + "'";
  }
  return alternatives;
}

std::string optionAlternatives(const TreeEntry& entry, const Option& option) {
  std::string alternatives = "'" + entry.path + " " + std::string(option.name) + "'";
  if (!option.shortName.empty())
    alternatives += " | '" + entry.path + " " + std::string(option.shortName) + "'";
  return alternatives;
}

std::string valueCases(const Command& root, const ValueCaseStyle& style) {
  std::string cases;
  for (const TreeEntry& entry : wholeTree(root)) {
    for (const Option* option : namedOptions(*entry.command)) {
      if (option->takes == Takes::nothing) continue;
      const std::string words = offeredValues(*option);
      cases.append(style.start).append(optionAlternatives(entry, *option)).append(") ");
      if (option->file) cases += style.files;
      if (!words.empty()) cases.append(style.offer).append(words).append(style.behind);
      cases += "return ;;\n";
    }
  }
  return cases;
}

}  // namespace vell::cli

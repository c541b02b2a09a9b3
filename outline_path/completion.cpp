#include <algorithm>

#include "outline_path/characters.h"
#include "outline_path/literals.h"
#include "outline_path/parse.h"
#include "outline_path/with_parse.h"

namespace vell::outline_path {
namespace {

using Completion = OutlinePathWithParse::Completion;
using Items = std::vector<std::string>;

struct Known {
  std::span<const std::string> attributeNames, attributeTexts;
};

template <typename Table>
void addSpellings(Items& items, const Table& table) {
  for (const auto& entry : table) items.emplace_back(entry);
}

void addAxes(Items& items) {
  for (const Axis axis : verboseAxes()) items.emplace_back(spelling(axis));
}

void addTypeTests(Items& items) {
  for (const TypeTest test : typeTests()) items.emplace_back(spelling(test));
}

void addFunctions(Items& items) {
  for (const auto names : functionNames()) {
    for (const std::string_view name : names) items.push_back(std::string(name) + "()");
  }
}

void addValues(Items& items, const Known& known) {
  for (const std::string& text : known.attributeTexts) items.push_back(encodeString(text));
  addFunctions(items);
  addSpellings(items, std::array{trueWord, falseWord, nullWord});
}

void addPredicates(Items& items, const Known& known) {
  for (const std::string& name : known.attributeNames) items.push_back('@' + name);
  for (const std::string_view name : everyRowsAttributeNames()) items.push_back('@' + std::string(name));
  items.emplace_back(spelling(PredicateOp::notOf));
  addFunctions(items);
}

void addFilters(Items& items, const Known& known) {
  addTypeTests(items);
  addPredicates(items, known);
}

void addStrings(Items& items, const Known& known) {
  for (const std::string& text : known.attributeTexts) items.push_back(encodeString(text).substr(1));
}

/// The words that satisfy what was expected. What is a sign or a matter of taste has none.
void addFor(Expected expected, Items& items, const Known& known) {
  switch (expected) {
    case Expected::path:
      return addAxes(items);
    case Expected::step:
      // A step behind a separator may leave its axis out.
      addAxes(items);
      return addFilters(items, known);
    case Expected::filter:
      return addFilters(items, known);
    case Expected::value:
      return addValues(items, known);
    case Expected::predicate:
      return addPredicates(items, known);
    case Expected::attributeName:
      addSpellings(items, known.attributeNames);
      return addSpellings(items, everyRowsAttributeNames());
    case Expected::closingQuote:
      return addStrings(items, known);
    case Expected::relation:
      return addSpellings(items, relationOps);
    case Expected::predicateOp:
      return addSpellings(items, std::array{predicateOps[0], predicateOps[1]});
    case Expected::setOp:
      return addSpellings(items, setOps);
    case Expected::modifierLetter:
      for (const char letter : relationModifiers) items.emplace_back(1, letter);
      return;
    default:
      return;
  }
}

/// The beginning of the word that ends at `position`; `@` and an opening quote belong to what follows them.
std::size_t wordBegin(std::string_view text, std::size_t position) {
  const auto isWordByte = [](char c) {
    return static_cast<unsigned char>(c) >= 0x80 || wordLength({&c, 1}) == 1;
  };
  while (position > 0 && isWordByte(text[position - 1])) --position;
  return position;
}

void keepMatching(Items& items, std::string_view pattern) {
  Items kept;
  for (std::string& item : items) {
    const bool begins = std::string_view(item).substr(0, pattern.size()) == pattern;
    if (begins && std::find(kept.begin(), kept.end(), item) == kept.end()) kept.push_back(std::move(item));
  }
  items = std::move(kept);
}

}  // namespace

Completion OutlinePathWithParse::completion(std::size_t position, std::span<const std::string> attributeNames,
                                            std::span<const std::string> attributeTexts) const {
  const std::string_view text = expression;
  position = std::min(position, text.size());
  const std::size_t begin = wordBegin(text, position);
  Completion completion;
  const ParseOptions options{allowValueExpression_};
  for (const Expected expected : expectedBehind(text.substr(0, begin), options)) {
    addFor(expected, completion.items, {attributeNames, attributeTexts});
  }
  const std::string_view pattern = text.substr(begin, position - begin);
  keepMatching(completion.items, pattern);
  if (completion.items.empty()) return completion;
  if (!pattern.empty()) completion.pattern = std::string(pattern);
  completion.range = {begin, begin + wordLength(text.substr(begin))};
  return completion;
}

}  // namespace vell::outline_path

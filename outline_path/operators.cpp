#include "outline_path/operators.h"

#include <algorithm>

#include "outline_path/characters.h"
#include "outline_path/word_index.h"

namespace vell::outline_path {
namespace {

constexpr auto kKeywords = [] {
  std::array<std::string_view, kSetOps.size() + kPredicateOps.size() + kRelationOps.size()> all{};
  std::size_t next = 0;
  for (const auto word : kSetOps) all[next++] = word;
  for (const auto word : kPredicateOps) all[next++] = word;
  for (const auto word : kRelationOps) all[next++] = word;
  return all;
}();

constexpr WordIndex kKeywordIndex(kKeywords);

constexpr WordIndex kRelationIndex(kRelationOps);

constexpr std::array<std::string_view, 3> kConstants = {kTrue, kFalse, kNull};
constexpr WordIndex kConstantIndex(kConstants);

}  // namespace

std::optional<RelationOp> relationAt(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const bool isLongSign = text.size() > 1 && text[1] == '=' && text.front() != '=';
  const std::size_t length = isLongSign ? 2 : std::max(wordLength(text), std::size_t{1});
  const std::size_t index = kRelationIndex.find(text.substr(0, length));
  if (index == kRelationOps.size()) return std::nullopt;
  return static_cast<RelationOp>(index);
}

std::span<const std::string_view> keywords() { return kKeywords; }

bool isKeyword(std::string_view word) { return kKeywordIndex.find(word) != kKeywords.size(); }

bool isConstant(std::string_view word) { return kConstantIndex.find(word) != kConstants.size(); }

}  // namespace vell::outline_path

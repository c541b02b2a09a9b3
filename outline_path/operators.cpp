#include "outline_path/operators.h"

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

}  // namespace

std::optional<RelationOp> relationAt(std::string_view text) {
  if (text.empty()) return std::nullopt;
  std::size_t length = lengthOf(kInName, text) != 0 ? wordLength(text) : 1;
  if (text.front() != '=' && text.substr(1, 1) == "=") length = 2;
  const std::size_t index = kRelationIndex.find(text.substr(0, length));
  if (index == kRelationOps.size()) return std::nullopt;
  return static_cast<RelationOp>(index);
}

std::span<const std::string_view> keywords() { return kKeywords; }

bool isKeyword(std::string_view word) { return kKeywordIndex.find(word) != kKeywords.size(); }

bool isConstant(std::string_view word) { return word == kTrue || word == kFalse || word == kNull; }

}  // namespace vell::outline_path

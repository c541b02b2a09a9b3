#include "outline_path/operators.h"

#include <algorithm>

#include "outline_path/characters.h"

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

bool isWordRelation(std::string_view spelling) { return spelling.front() >= 'a' && spelling.front() <= 'z'; }

}  // namespace

std::optional<RelationOp> relationAt(std::string_view text) {
  if (text.empty()) return std::nullopt;
  for (std::size_t i = 0; i < kRelationOps.size(); ++i) {
    const std::string_view spelling = kRelationOps[i];
    if (text.front() != spelling.front() || text.substr(0, spelling.size()) != spelling) continue;
    const bool ends = !isWordRelation(spelling) || wordLength(text.substr(spelling.size())) == 0;
    if (ends) return static_cast<RelationOp>(i);
  }
  return std::nullopt;
}

std::span<const std::string_view> keywords() { return kKeywords; }

bool isKeyword(std::string_view word) {
  return std::find(kKeywords.begin(), kKeywords.end(), word) != kKeywords.end();
}

bool isConstant(std::string_view word) { return word == kTrue || word == kFalse || word == kNull; }

}  // namespace vell::outline_path

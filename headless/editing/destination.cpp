#include "headless/editing/destination.h"

#include <algorithm>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

/// The index that the position stands for; none for the end. Large numbers become 2^31.
std::optional<std::size_t> indexOf(const std::string& position) {
  if (position == "end") return std::nullopt;
  if (position == "start") return 0;
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (position.empty() || !std::all_of(position.begin(), position.end(), isDigit)) {
    constexpr std::string_view names[] = {"start", "end"};
    throw Problem("There is no position \"" + position + "\"" + didYouMean(position, names) +
                  "; use start, end or an index from 0");
  }
  std::size_t index = 0;
  for (const char digit : position)
    index = std::min<std::size_t>(index * 10 + static_cast<std::size_t>(digit - '0'), 1u << 31);
  return index;
}

const Row* childAt(const Row& parent, const std::string& position, const RowFilter& stays) {
  const auto index = indexOf(position);
  if (!index) return nullptr;
  std::size_t passed = 0;
  for (const Row* child = parent.firstChild(); child; child = child->next()) {
    if (!stays(*child)) continue;
    if (passed == *index) return child;
    ++passed;
  }
  if (passed == *index) return nullptr;
  throw Problem("There is no position " + position + ": the row has " + std::to_string(passed) +
                (passed == 1 ? " child" : " children") + "; use start, end or 0 to " +
                std::to_string(passed));
}

const Row& siblingParent(const Row& sibling) {
  if (sibling.parent()) return *sibling.parent();
  throw Problem("Nothing can stand beside the root; name a row below it");
}

}  // namespace

Destination resolve(const Outline& outline, const DestinationRequest& request, const RowFilter& stays) {
  if (request.before) return {&siblingParent(*request.before), request.before};
  if (request.after) {
    const Row& parent = siblingParent(*request.after);
    const Row* next = request.after->next();
    while (next && !stays(*next)) next = next->next();
    return {&parent, next};
  }
  const Row& parent = request.parent ? *request.parent : outline.root();
  return {&parent, childAt(parent, request.position.value_or("end"), stays)};
}

}  // namespace vell::headless

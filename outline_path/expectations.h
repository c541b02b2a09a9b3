#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vell::outline_path {

/// What a rule wants to see, the most useful to be told of first.
enum class Expected : std::uint8_t {
  path,
  step,
  filter,
  value,
  predicate,
  attributeName,
  variableName,
  integer,
  divisor,
  blank,
  relation,
  closingQuote,
  escapeLetter,
  hexDigits,
  lowSurrogate,
  highSurrogate,
  modifierLetter,
  localeAware,
  modifierEnd,
  sliceColon,
  sliceEnd,
  argumentEnd,
  closingBracket,
  predicateOp,
  separator,
  slice,
  setOp,
  arithmetic,
  endOfInput,
};

/// In words, for "expected …".
std::string_view describe(Expected expected);

/// Gathers what was expected at the furthest place that a parse came to.
class Expectations {
 public:
  void note(std::size_t at, Expected expected) {
    if (at < furthest_) return;
    if (at > furthest_) all_.clear();
    furthest_ = at;
    if (std::find(all_.begin(), all_.end(), expected) == all_.end()) all_.push_back(expected);
  }

  std::size_t furthest() const { return furthest_; }
  /// Each once, the most useful first. A predicate is not named beside the filter that it may be, nor a
  /// filter beside the step.
  std::vector<Expected> all() const {
    std::vector<Expected> sorted = all_;
    std::sort(sorted.begin(), sorted.end());
    removeBeside(sorted, Expected::filter, Expected::predicate);
    removeBeside(sorted, Expected::step, Expected::filter);
    return sorted;
  }

 private:
  static void removeBeside(std::vector<Expected>& all, Expected wider, Expected narrower) {
    if (std::find(all.begin(), all.end(), wider) == all.end()) return;
    all.erase(std::remove(all.begin(), all.end(), narrower), all.end());
  }

  std::size_t furthest_ = 0;
  std::vector<Expected> all_;
};

}  // namespace vell::outline_path

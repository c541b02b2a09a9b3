#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
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

inline constexpr std::size_t expectedCount = static_cast<std::size_t>(Expected::endOfInput) + 1;

/// In words, for "expected …".
std::string_view describe(Expected expected);

/// A set of what was expected at one place.
class ExpectedSet {
 public:
  ExpectedSet(std::initializer_list<Expected> all = {}) {
    for (const Expected expected : all) insert(expected);
  }
  void insert(Expected expected) { bits_.set(index(expected)); }
  bool contains(Expected expected) const { return bits_.test(index(expected)); }
  /// Each once, the most useful first. A predicate is not named beside the filter that it may be, nor a
  /// filter beside the step.
  std::vector<Expected> inOrder() const;
  bool operator==(const ExpectedSet&) const = default;

 private:
  static std::size_t index(Expected expected) { return static_cast<std::size_t>(expected); }

  std::bitset<expectedCount> bits_;
};

/// Gathers what was expected at the furthest place that a parse came to.
class Expectations {
 public:
  void note(std::size_t at, Expected expected) {
    if (at < furthest_) return;
    if (at > furthest_) all_ = ExpectedSet();
    furthest_ = at;
    all_.insert(expected);
  }
  std::size_t furthest() const { return furthest_; }
  const ExpectedSet& all() const { return all_; }

 private:
  std::size_t furthest_ = 0;
  ExpectedSet all_;
};

/// Why a text is no outline path, as data.
struct Diagnostic {
  enum class Kind {
    /// A whole expression was read and text is left over.
    leftover,
    /// Something else was expected at the position.
    unexpected,
    /// A slice bound is no integer, or one that 64 bits do not hold.
    notAnInteger,
    /// The text is a single bare word.
    loneWord,
    tooDeep,
    invalidUtf8,
  };

  Kind kind = Kind::unexpected;
  /// The offset in the text, in bytes.
  std::size_t index = 0;
  /// What could have stood there.
  ExpectedSet expected;

  bool operator==(const Diagnostic&) const = default;
};

/// The diagnostic in words: what was found where and what was expected, the line with a caret under it and,
/// for a known habit, a hint. `text` is the text that was parsed. Lines end with a newline.
std::string render(const Diagnostic& diagnostic, std::string_view text);

/// One sentence for a habit from other languages, or a slip, that explains the error; empty where none does.
std::string hintFor(const Diagnostic& diagnostic, std::string_view text);

}  // namespace vell::outline_path

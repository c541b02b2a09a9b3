#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "outline_path/expectations.h"

namespace vell::outline_path {

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
  /// What could have stood there, the most useful first.
  std::vector<Expected> expected;

  bool operator==(const Diagnostic&) const = default;
};

/// The diagnostic in words: what was found where and what was expected, the line with a caret under it and,
/// for a known habit, a hint. `text` is the text that was parsed. Lines end with a newline.
std::string render(const Diagnostic& diagnostic, std::string_view text);

}  // namespace vell::outline_path

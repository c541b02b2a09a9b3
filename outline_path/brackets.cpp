#include "outline_path/brackets.h"

#include <algorithm>
#include <utility>

namespace vell::outline_path {
namespace {

/// Brackets and quotes stand before all letters and digits, which are quickly passed over so.
constexpr char kLastMark = ')';

}  // namespace

std::size_t behindString(std::string_view text, std::size_t quote) {
  std::size_t at = quote + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

void Brackets::prepare() {
  behind_ = few_.data();
  if (text_.size() > few_.size()) {
    many_.resize(text_.size());
    behind_ = many_.data();
  } else {
    std::fill_n(behind_, text_.size(), 0);
  }
}

void Brackets::pairFrom(std::size_t open) {
  // As long as a bracket is open its entry holds the one around it.
  std::size_t innermost = kUnpaired;
  for (std::size_t at = open; at < text_.size();) {
    const char c = text_[at];
    if (c > kLastMark) {
      ++at;
    } else if (c == '(' && behind_[at] != 0) {
      at = std::min(behind_[at], text_.size());
    } else if (c == '(') {
      behind_[at] = std::exchange(innermost, at);
      ++at;
    } else if (c == ')') {
      const std::size_t closed = std::exchange(innermost, behind_[innermost]);
      behind_[closed] = ++at;
      if (closed == open) return;
    } else {
      at = c == '"' ? behindString(text_, at) : at + 1;
    }
  }
  while (innermost != kUnpaired) innermost = std::exchange(behind_[innermost], kUnpaired);
}

}  // namespace vell::outline_path

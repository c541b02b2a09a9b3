#include "outline_path/brackets.h"

#include <algorithm>
#include <utility>

namespace vell::outline_path {
namespace {

/// Brackets and quotes stand close together: whatever else is quickly passed over so.
bool isNoMark(char c) { return c < '"' || c > ')'; }

}  // namespace

std::size_t behindString(std::string_view text, std::size_t quote) {
  std::size_t at = quote + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

void Brackets::prepare() {
  prepared_ = true;
  if (text_.size() > few_.size()) {
    many_.resize(text_.size());
  } else {
    std::fill_n(few_.data(), text_.size(), Short{0});
  }
}

template <typename Offset>
void Brackets::pairFrom(Offset* behind, std::size_t open) {
  constexpr auto kNone = static_cast<Offset>(kUnpaired);
  // As long as a bracket is open its entry holds the one around it.
  Offset innermost = kNone;
  for (std::size_t at = open; at < text_.size();) {
    const char c = text_[at];
    if (isNoMark(c)) {
      ++at;
    } else if (c == '(' && behind[at] != 0) {
      at = std::min<std::size_t>(behind[at], text_.size());
    } else if (c == '(') {
      behind[at] = std::exchange(innermost, static_cast<Offset>(at));
      ++at;
    } else if (c == ')') {
      const std::size_t closed = std::exchange(innermost, behind[innermost]);
      behind[closed] = static_cast<Offset>(++at);
      if (closed == open) return;
    } else {
      at = c == '"' ? behindString(text_, at) : at + 1;
    }
  }
  while (innermost != kNone) innermost = std::exchange(behind[innermost], kNone);
}

template void Brackets::pairFrom(Short*, std::size_t);
template void Brackets::pairFrom(std::size_t*, std::size_t);

}  // namespace vell::outline_path

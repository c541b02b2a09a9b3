#include "text/lines.h"

#include <algorithm>

namespace vell::text {

std::size_t lineNumber(std::string_view text, std::size_t offset) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
  return static_cast<std::size_t>(std::count(text.begin(), end, '\n')) + 1;
}

std::string_view lineEndOf(std::string_view text) {
  const std::size_t feed = text.find('\n');
  return feed != text.npos && feed > 0 && text[feed - 1] == '\r' ? "\r\n" : "\n";
}

bool Lines::next() {
  if (end_ >= text_.size()) return false;
  offset_ = end_;
  const std::size_t feed = std::min(text_.find('\n', offset_), text_.size());
  line_ = text_.substr(offset_, feed - offset_);
  if (line_.ends_with('\r')) line_.remove_suffix(1);
  end_ = feed + 1;
  ++number_;
  return true;
}

void Lines::unread() {
  end_ = offset_;
  --number_;
}

}  // namespace vell::text

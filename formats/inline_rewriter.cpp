#include "formats/inline_markdown.h"

namespace vell::formats {

std::string rewriteInline(std::string_view source, const Text& now, LineFeeds lineFeeds) {
  if (parseInline(source, lineFeeds) == now) return std::string(source);
  std::string rendered;
  appendInline(rendered, now);
  return rendered;
}

}  // namespace vell::formats

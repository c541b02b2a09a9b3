#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/inline_markdown.h"

namespace vell::formats {

// What stands in inline source as one: what follows a "]" and what "<" begins.

/// What a "]" gives to the text before it.
struct BracketTail {
  Attributes style;
  std::size_t end = 0;
  bool isLink = false;
};
/// Reads `(target "title")`, `{key=value}` or both at `at`.
std::optional<BracketTail> readBracketTail(std::string_view source, std::size_t at);

/// An address in angle brackets at the front, `<https://x>` or `<a@b.c>`: its target; none where there is
/// none.
std::optional<std::string> autolinkTarget(std::string_view source);

/// Finds html, a tag or a comment, in a source that is read from front to back. With a backslash in it it is
/// none: there marks are escaped as in any text.
class HtmlFinder {
 public:
  explicit HtmlFinder(std::string_view source) : source_(source) {}

  /// Where the html ends that begins at `at`; npos where there is none.
  std::size_t endOf(std::size_t at);

 private:
  /// Where something stands next; searches no byte twice.
  struct Next {
    std::string_view wanted;
    std::size_t searchedFrom = std::string_view::npos;
    std::size_t found = 0;

    std::size_t behind(std::string_view source, std::size_t at);
  };
  struct Enclosure {
    std::string_view begin;
    Next end;
  };

  std::string_view source_;
  Enclosure enclosures_[3] = {{"<!--", {"-->"}}, {"<?", {"?>"}}, {"<![CDATA[", {"]]>"}}};
  Next backslash_{"\\"};
};

}  // namespace vell::formats

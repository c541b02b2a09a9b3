#include "outline_path/path_check.h"

#include "outline_path/with_parse.h"

namespace vell::outline_path {

std::string checkOutlinePath(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return std::string(cookbook());
  const std::size_t last = text.find_last_not_of(kBlanks);
  return OutlinePathWithParse(std::string(text.substr(first, last - first + 1)),
                              {.allowValueExpression = true, .trace = true})
      .compactDescription();
}

}  // namespace vell::outline_path

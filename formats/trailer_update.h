#pragma once

#include <string>
#include <string_view>

#include "formats/attribute_list.h"

namespace vell::formats {

/// The trailer `now` in braces as it is written over `trailer`, the braces of before: items that still say
/// the same stay as they are written, with the blanks before them; the others are changed in place or go, and
/// new ones follow. Empty where nothing is left to say.
std::string rewriteTrailer(std::string_view trailer, Times times, const RowTrailer& now);

}  // namespace vell::formats

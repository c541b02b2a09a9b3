#pragma once

#include <string>
#include <string_view>

#include "outline_path/diagnostic.h"

namespace vell::outline_path {

/// One sentence for a habit from other languages, or a slip, that explains the error; empty where none does.
std::string hintFor(const Diagnostic& diagnostic, std::string_view text);

}  // namespace vell::outline_path

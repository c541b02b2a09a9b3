#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// What to say of a path that has selected nothing: a sentence for a step such as `//tasks`, which searches
/// for text where a type test was probably meant, or for a word such as `today` that is compared as text.
/// Empty where there is none, and for what does not parse.
std::string hintForNoMatch(std::string_view path);

/// What to say of a bare word that was probably meant as a date: `today` needs brackets. Empty for others.
std::string hintForDateWord(std::string_view word);
/// What to write in place of a function that does not exist; empty where nothing comes near.
std::string hintForFunction(std::string_view name);

}  // namespace vell::outline_path

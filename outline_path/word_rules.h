#pragma once

#include <cstddef>
#include <string_view>

#include "outline_path/parse_context.h"

// Decisions on words that the rules of the grammar are given: predicates of whole words, and finders that
// return the length of what they recognised at the beginning of the text (0 for nothing) and leave which
// entry of its table it was in the context.

namespace vell::outline_path::rules {

bool isUnquotedWord(std::string_view word, const ParseContext& context);
/// A bare word that a step may consist of, a test for the text.
bool isTextWord(std::string_view word, const ParseContext& context);
/// A number that a double can hold.
bool isFiniteNumber(std::string_view word, const ParseContext& context);
bool isBoolean(std::string_view word, const ParseContext& context);
bool isNull(std::string_view word, const ParseContext& context);

std::size_t functionName(std::string_view text, ParseContext& context);
std::size_t relationOp(std::string_view text, ParseContext& context);
std::size_t relationModifier(std::string_view text, ParseContext& context);
std::size_t nodeType(std::string_view text, ParseContext& context);
std::size_t namedAxis(std::string_view text, ParseContext& context);
/// A signed 64-bit integer, left in `context.integer`.
std::size_t sliceInteger(std::string_view text, ParseContext& context);

bool isDivisor(const ParseContext& context, std::size_t at);
bool valueIsAllowed(const ParseContext& context, std::size_t at);

}  // namespace vell::outline_path::rules

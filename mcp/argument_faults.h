#pragma once

#include <string>

#include "mcp/value.h"

namespace vell::mcp {

/// Says of arguments that do not fit an object schema what is wrong with each, one fault a line: its place,
/// what was expected, what was there, what to write instead. Empty where it finds no fault.
/// Knows the keywords of schema.h.
std::string explainFaults(const Value& schema, const Value& arguments);

}  // namespace vell::mcp

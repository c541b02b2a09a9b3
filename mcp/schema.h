#pragma once

#include <string>
#include <vector>

#include "mcp/value.h"

/// Builds JSON Schemas of these keywords: type, enum, anyOf, items, properties, required,
/// additionalProperties and description. They mean the same in draft 2020-12 and in draft 7, which the
/// validator implements.
namespace vell::mcp::schema {

Value string();
Value integer();
Value boolean();
Value null();
/// One of these texts.
Value oneOf(const std::vector<std::string>& texts);
Value arrayOf(Value items);
/// An object whose members, of any name, all fit.
Value mapOf(Value members);
Value anyOf(std::vector<Value> alternatives);
/// Other members are accepted only where `open`.
Value object(Value::Object properties, const std::vector<std::string>& required, bool open = false);
Value described(Value schema, const std::string& description);

/// "a", "a or b", "a, b or c".
std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction);

/// The schema in words: "a string", "an array of strings", "'tree' or 'flat'".
std::string describe(const Value& schema);

}  // namespace vell::mcp::schema

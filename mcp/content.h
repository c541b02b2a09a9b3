#pragma once

#include <string>

#include "mcp/value.h"
#include "mcp/value_text.h"

/// Content blocks, tagged by `type`.
namespace vell::mcp::content {

Value text(std::string text);
/// Appends the same block for a text that is written as a JSON string.
void appendText(const ValueWriter& writeText, std::string& out);
/// `data` holds raw bytes; they travel in base64.
Value image(const std::string& data, const std::string& mimeType);
Value audio(const std::string& data, const std::string& mimeType);
Value resource(Value contents);
Value resourceLink(Value::Object reference);

/// Throws DecodeError for a block of another type.
void check(const Value& block);

}  // namespace vell::mcp::content

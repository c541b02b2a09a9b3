#include "json/faults.h"

#include <cstdio>

#include "json/error.h"
#include "text/utf8.h"

namespace vell::json {
namespace {

std::string hexByte(char byte) {
  char text[16];
  std::snprintf(text, sizeof text, "byte 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
  return text;
}

}  // namespace

void throwTextFault(std::string_view text) {
  if (const auto invalid = text::findInvalidUtf8(text))
    throw ParseError(hexByte(text[*invalid]) + " is not UTF-8", *invalid);
  std::size_t open = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      inString = !inString;
      open = i;
    } else if (inString && text[i] == '\\') {
      ++i;
    } else if (inString && static_cast<unsigned char>(text[i]) < 0x20) {
      throw ParseError("a string holds the control character " + hexByte(text[i]) + ", which must be escaped",
                       i);
    }
  }
  if (inString) throw ParseError("the string that begins here has no end", open);
  throw ParseError("expected a value, found the end of the text", text.size());
}

std::string describeAt(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) return "the end of the text";
  if (static_cast<unsigned char>(text[offset]) < 0x20) return hexByte(text[offset]);
  std::string quoted(1, '\'');
  quoted.append(text.substr(offset, text::utf8Length(text.substr(offset)))).append("'");
  return quoted;
}

}  // namespace vell::json

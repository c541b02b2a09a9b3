#include "json/faults.h"

#include <cstdint>
#include <cstdio>

#include "json/error.h"

namespace vell::json {
namespace {

std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

std::string hexByte(char byte) {
  char text[16];
  std::snprintf(text, sizeof text, "byte 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
  return text;
}

void throwIfNotUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = characterLength(text, i);
    if (length == 0) throw ParseError(hexByte(text[i]) + " is not UTF-8", i);
    i += length;
  }
}

}  // namespace

std::size_t characterLength(std::string_view text, std::size_t offset) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[offset + i]); };
  const std::size_t length = sequenceLength(byte(0));
  if (length == 0 || offset + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
  const bool surrogate = byte(0) == 0xED && byte(1) > 0x9F;
  const bool tooLarge = byte(0) == 0xF4 && byte(1) > 0x8F;
  return overlong || surrogate || tooLarge ? 0 : length;
}

void throwTextFault(std::string_view text) {
  throwIfNotUtf8(text);
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
  quoted.append(text.substr(offset, characterLength(text, offset))).append("'");
  return quoted;
}

}  // namespace vell::json

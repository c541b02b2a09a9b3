#include "mcp/base64.h"

#include <algorithm>

namespace vell::mcp {

std::string base64(std::string_view bytes) {
  static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? alphabet[group >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

}  // namespace vell::mcp

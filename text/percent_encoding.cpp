#include "text/percent_encoding.h"

#include <charconv>

namespace vell::text {
namespace {

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string percentEncoded(std::string_view text, std::string_view plain) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (isLetterOrDigit(c) || plain.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
  }
  return encoded;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  constexpr std::size_t length = 2;
  std::string decoded;
  while (!text.empty()) {
    const std::string_view before = text.substr(0, text.find('%'));
    decoded += before;
    text.remove_prefix(before.size());
    if (text.empty()) break;
    text.remove_prefix(1);
    const std::string_view digits = text.substr(0, length);
    unsigned byte = 0;
    const char* end = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr;
    if (digits.size() < length || end != digits.data() + length) return std::nullopt;
    decoded += static_cast<char>(byte);
    text.remove_prefix(length);
  }
  return decoded;
}

}  // namespace vell::text

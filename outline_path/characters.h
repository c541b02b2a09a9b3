#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The character classes of the language, over UTF-8 text that is known to be valid.

namespace vell::outline_path {

/// The six ASCII blanks.
constexpr bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// What an ASCII character may do: start a name, or stand in one. Of others the byte does not tell.
enum : std::uint8_t { kStartsName = 1, kInName = 2, kBeyondAscii = 4 };
inline constexpr std::array<std::uint8_t, 256> kNameClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (unsigned char c = 'a'; c <= 'z'; ++c) classes[c] = kStartsName | kInName;
  for (unsigned char c = 'A'; c <= 'Z'; ++c) classes[c] = kStartsName | kInName;
  for (unsigned char c = '0'; c <= '9'; ++c) classes[c] = kInName;
  for (const int c : {':', '_'}) classes[static_cast<std::size_t>(c)] = kStartsName | kInName;
  for (const int c : {'-', '.'}) classes[static_cast<std::size_t>(c)] = kInName;
  for (std::size_t c = 0x80; c < classes.size(); ++c) classes[c] = kBeyondAscii;
  return classes;
}();

/// A set of bytes.
class Characters {
 public:
  constexpr Characters() = default;
  constexpr explicit Characters(std::string_view characters) {
    for (const char c : characters) add(c);
  }
  constexpr void add(char c) {
    const auto byte = static_cast<unsigned char>(c);
    bits_[byte / 64] |= std::uint64_t{1} << (byte % 64);
  }
  constexpr bool has(char c) const {
    const auto byte = static_cast<unsigned char>(c);
    return (bits_[byte / 64] >> (byte % 64) & 1) != 0;
  }

 private:
  std::array<std::uint64_t, 4> bits_{};
};

/// What a name may begin with; of what lies beyond ASCII more than that.
inline constexpr Characters kNameBeginnings = [] {
  Characters characters;
  for (std::size_t c = 0; c < kNameClasses.size(); ++c) {
    if ((kNameClasses[c] & (kStartsName | kBeyondAscii)) != 0) characters.add(static_cast<char>(c));
  }
  return characters;
}();

/// The length of the character beyond ASCII at the beginning of `text` where it is of the class, else 0.
[[gnu::noinline, gnu::cold]] std::size_t lengthBeyondAscii(std::uint8_t wanted, std::string_view text);

/// The length of the character at the beginning of `text` where it is of the class, else 0.
inline std::size_t lengthOf(std::uint8_t wanted, std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  if (byte >= 0x80) return lengthBeyondAscii(wanted, text);
  return (kNameClasses[byte] & wanted) != 0 ? 1 : 0;
}

/// The number of bytes of the run of word characters (those that may stand in an unquoted word).
inline std::size_t wordLength(std::string_view text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const char* at = begin;
  while (true) {
    while (at != end && (kNameClasses[static_cast<unsigned char>(*at)] & kInName) != 0) ++at;
    if (at == end || static_cast<unsigned char>(*at) < 0x80) break;
    const std::size_t next =
        lengthBeyondAscii(kInName, std::string_view(at, static_cast<std::size_t>(end - at)));
    if (next == 0) break;
    at += next;
  }
  return static_cast<std::size_t>(at - begin);
}

/// The number of bytes of the name that `text` begins with: one that may start a name, then any that may
/// stand in one. 0 where there is none.
inline std::size_t nameLength(std::string_view text) {
  return text.empty() || lengthOf(kStartsName, text) == 0 ? 0 : wordLength(text);
}

/// Whether `word` is decimal digits with an optional fraction.
bool isNumber(std::string_view word);

}  // namespace vell::outline_path

#include "formats/json_text.h"

#include <array>

namespace vell::formats {
namespace {

/// For each byte the letter behind the backslash, 'u' for the long form, 0 where it stands for itself.
constexpr std::array<char, 256> makeEscapes() {
  std::array<char, 256> escapes{};
  for (std::size_t byte = 0; byte < 0x20; ++byte) escapes[byte] = 'u';
  escapes['"'] = '"';
  escapes['\\'] = '\\';
  escapes['\b'] = 'b';
  escapes['\f'] = 'f';
  escapes['\n'] = 'n';
  escapes['\r'] = 'r';
  escapes['\t'] = 't';
  return escapes;
}

constexpr std::array<char, 256> escapes = makeEscapes();

void appendEscape(std::string& out, unsigned char byte) {
  constexpr std::string_view hex = "0123456789abcdef";
  out += '\\';
  out += escapes[byte];
  if (escapes[byte] != 'u') return;
  out += "00";
  out += hex[byte >> 4];
  out += hex[byte & 15];
}

}  // namespace

void appendJsonString(std::string& out, std::string_view text) {
  out += '"';
  std::size_t done = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (escapes[byte] == 0) continue;
    out.append(text, done, at - done);
    appendEscape(out, byte);
    done = at + 1;
  }
  out.append(text, done, text.size() - done);
  out += '"';
}

void appendJsonObject(std::string& out, const Attributes& attributes) {
  char before = '{';
  for (const Attribute& attribute : attributes) {
    out += before;
    appendJsonString(out, attribute.key);
    out += ':';
    appendJsonString(out, attribute.value);
    before = ',';
  }
  if (attributes.empty()) out += '{';
  out += '}';
}

void appendJsonRuns(std::string& out, const Text& text) {
  out += '[';
  bool first = true;
  text.forEachRun([&](std::string_view string, const Attributes& attrs) {
    out += first ? "{\"string\":" : ",{\"string\":";
    first = false;
    appendJsonString(out, string);
    if (!attrs.empty()) {
      out += ",\"attrs\":";
      appendJsonObject(out, attrs);
    }
    out += '}';
  });
  out += ']';
}

}  // namespace vell::formats

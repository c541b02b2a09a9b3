#include <simdjson.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "mcp/base64.h"
#include "mcp/utf8.h"
#include "mcp/value_text.h"

namespace vell::mcp {

namespace {

/// What a byte becomes in a string: itself, or a short escape. Length 0: it takes a long one.
struct Form {
  char text[2] = {};
  std::uint8_t length = 0;
};

constexpr std::array<Form, 256> makeForms() {
  std::array<Form, 256> forms{};
  for (std::size_t byte = 0x20; byte < 256; ++byte) forms[byte] = {{static_cast<char>(byte)}, 1};
  for (const auto& [byte, letter] :
       {std::pair{'\b', 'b'}, {'\f', 'f'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'"', '"'}, {'\\', '\\'}}) {
    forms[static_cast<unsigned char>(byte)] = {{'\\', letter}, 2};
  }
  return forms;
}

constexpr std::array<Form, 256> forms = makeForms();

constexpr std::size_t stride = 8;

/// How many of the eight bytes from there on stand for themselves in a string, up to the first that does not.
std::size_t plainBytes(const char* text) {
  constexpr std::uint64_t each = 0x0101010101010101;
  std::uint64_t bytes = 0;
  for (std::size_t i = 0; i < stride; ++i)
    bytes |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
  // The top bit of a byte is set where a subtraction goes below zero, and then perhaps in bytes behind that,
  // which no longer matter.
  const std::uint64_t below =
      (bytes - each * 0x20) | ((bytes ^ each * '"') - each) | ((bytes ^ each * '\\') - each);
  return static_cast<std::size_t>(std::countr_zero(below & ~bytes & each * 0x80)) / 8;
}

/// Gathers the string before it goes out, with room for one stride and one form more than it counts.
struct Piece {
  static constexpr std::size_t size = 4096;
  static constexpr std::size_t longestForm = 7;

  char bytes[size + stride + longestForm];
  std::size_t used = 0;

  void put(std::string_view text) {
    std::memcpy(bytes + used, text.data(), text.size());
    used += text.size();
  }
  void flush(std::string& out) { out.append(bytes, std::exchange(used, 0)); }
};

void putByte(char byte, Piece& piece) {
  const Form& form = forms[static_cast<unsigned char>(byte)];
  std::memcpy(piece.bytes + piece.used, form.text, 2);
  piece.used += form.length;
  if (form.length != 0) return;
  char escape[7];
  std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
  piece.put(escape);
}

std::string repaired(std::string_view text) {
  std::string valid;
  while (!text.empty()) {
    const std::size_t length = utf8Length(text);
    valid.append(length == 0 ? "\xEF\xBF\xBD" : text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

struct Encoder {
  std::string& out;

  void operator()(std::nullptr_t) { out += "null"; }
  void operator()(bool value) { out += value ? "true" : "false"; }
  void operator()(std::int64_t value) { out += std::to_string(value); }
  void operator()(double value) { out += nlohmann::json(value).dump(); }
  void operator()(const std::string& value) { encodeString(value, out); }

  void operator()(const Data& value) {
    encodeString("data:" + value.mimeType.value_or("text/plain") + ";base64," + base64(value.bytes), out);
  }

  void operator()(const Value::Array& value) {
    char before = '[';
    for (const Value& element : value) {
      out += std::exchange(before, ',');
      encode(element, out);
    }
    out += value.empty() ? "[]" : "]";
  }

  void operator()(const Value::Object& value) {
    char before = '{';
    for (const auto& [key, member] : value) {
      out += std::exchange(before, ',');
      encodeString(key, out);
      out += ':';
      encode(member, out);
    }
    out += value.empty() ? "{}" : "}";
  }
};

}  // namespace

// Without a branch for what is frequent: quotes come too often and too oddly to be guessed. So behind each
// run of plain bytes one more is looked up, whether it needs it or not.
void encodeString(std::string_view text, std::string& out) {
  if (!simdjson::validate_utf8(text.data(), text.size())) return encodeString(repaired(text), out);
  out.reserve(out.size() + text.size() + text.size() / 4 + 2);
  out += '"';
  Piece piece;
  for (std::size_t at = 0; at < text.size();) {
    if (piece.used >= Piece::size) piece.flush(out);
    if (text.size() - at > stride) {
      std::memcpy(piece.bytes + piece.used, text.data() + at, stride);
      const std::size_t plain = plainBytes(text.data() + at);
      piece.used += plain;
      at += plain;
    }
    putByte(text[at++], piece);
  }
  piece.flush(out);
  out += '"';
}

void encode(const Value& value, std::string& out) { value.visit(Encoder{out}); }

std::string encode(const Value& value) {
  std::string out;
  encode(value, out);
  return out;
}

}  // namespace vell::mcp

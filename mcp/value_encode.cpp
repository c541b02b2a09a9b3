#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "mcp/base64.h"
#include "mcp/utf8.h"
#include "mcp/value_text.h"

namespace vell::mcp {

namespace {

/// What a byte becomes in a string: itself, or a short escape. Length 0: it takes more to tell.
struct Form {
  char text[2] = {};
  std::uint8_t length = 0;
};

std::array<Form, 256> makeForms() {
  std::array<Form, 256> forms{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) forms[byte] = {{static_cast<char>(byte)}, 1};
  for (const auto& [byte, letter] :
       {std::pair{'\b', 'b'}, {'\f', 'f'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'"', '"'}, {'\\', '\\'}}) {
    forms[static_cast<unsigned char>(byte)] = {{'\\', letter}, 2};
  }
  return forms;
}

const std::array<Form, 256> forms = makeForms();

/// Gathers the string before it goes out, with room for one form more than it counts.
struct Piece {
  static constexpr std::size_t size = 4096;
  static constexpr std::size_t longestForm = 7;

  char bytes[size + longestForm];
  std::size_t used = 0;

  void put(std::string_view text) {
    std::memcpy(bytes + used, text.data(), text.size());
    used += text.size();
  }
  void flush(std::string& out) { out.append(bytes, std::exchange(used, 0)); }
};

/// Puts the character that starts at the offset: a control character, one beyond ASCII or, as U+FFFD, a byte
/// that starts none. Returns how many bytes it took.
std::size_t putRareCharacter(std::string_view text, std::size_t at, Piece& piece) {
  const std::size_t length = utf8Length(text.substr(at, 4));
  if (length > 1) {
    piece.put(text.substr(at, length));
  } else if (length == 1) {
    char escape[7];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(text[at]));
    piece.put(escape);
  } else {
    piece.put("\xEF\xBF\xBD");
  }
  return length ? length : 1;
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

// Without a branch for what is frequent: quotes come too often and too oddly to be guessed.
void encodeString(std::string_view text, std::string& out) {
  out.reserve(out.size() + text.size() + text.size() / 4 + 2);
  out += '"';
  Piece piece;
  for (std::size_t at = 0; at < text.size();) {
    if (piece.used >= Piece::size) piece.flush(out);
    const Form& form = forms[static_cast<unsigned char>(text[at])];
    std::memcpy(piece.bytes + piece.used, form.text, 2);
    piece.used += form.length;
    at += form.length != 0 ? 1 : putRareCharacter(text, at, piece);
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

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "mcp/value.h"
#include "text/utf8.h"

namespace vell::mcp {

namespace {

/// What a byte becomes in a string: itself, or a short escape. Length 0: it takes a long one.
struct Form {
  char text[2] = {};
  std::uint16_t length = 0;
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

constexpr std::size_t longestForm = 6;

std::size_t writeLongForm(char byte, char* to) {
  char form[longestForm + 1];
  std::snprintf(form, sizeof form, "\\u%04x", static_cast<unsigned>(byte));
  std::memcpy(to, form, longestForm);
  return longestForm;
}

/// Gathers the string before it goes out, with room for one stride more than it counts.
class Piece {
 public:
  static constexpr std::size_t stride = 8;

  explicit Piece(std::string& out) : out_(out) {}

  /// Without a branch for what is frequent: quotes come too often and too oddly to be guessed. Where a byte
  /// takes a long escape, the whole stride is put once more.
  void putStride(const char* text) {
    char* end = bytes_ + used_;
    std::uint16_t shortest = 2;
    for (std::size_t i = 0; i < stride; ++i) {
      const Form form = forms[static_cast<unsigned char>(text[i])];
      std::memcpy(end, form.text, sizeof form.text);
      end += form.length;
      shortest = std::min(shortest, form.length);
    }
    if (shortest == 0) return put({text, stride});
    used_ = static_cast<std::size_t>(end - bytes_);
    if (used_ >= size) flush();
  }

  /// At most one stride.
  void put(std::string_view text) {
    for (const char byte : text) {
      const Form form = forms[static_cast<unsigned char>(byte)];
      std::memcpy(bytes_ + used_, form.text, sizeof form.text);
      used_ += form.length;
      if (form.length == 0) used_ += writeLongForm(byte, bytes_ + used_);
    }
    if (used_ >= size) flush();
  }

  void flush() { out_.append(bytes_, std::exchange(used_, 0)); }

 private:
  static constexpr std::size_t size = 4096;

  std::string& out_;
  std::size_t used_ = 0;
  char bytes_[size + stride * longestForm];
};

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

void encodeString(std::string_view text, std::string& out) {
  if (!simdjson::validate_utf8(text.data(), text.size()))
    return encodeString(text::replaceInvalidUtf8(text), out);
  out.reserve(out.size() + text.size() + text.size() / 4 + 2);
  out += '"';
  Piece piece(out);
  for (; text.size() >= Piece::stride; text.remove_prefix(Piece::stride)) piece.putStride(text.data());
  piece.put(text);
  piece.flush();
  out += '"';
}

void encode(const Value& value, std::string& out) { value.visit(Encoder{out}); }

std::string encode(const Value& value) {
  std::string out;
  encode(value, out);
  return out;
}

}  // namespace vell::mcp

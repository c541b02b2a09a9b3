#include "json/tokenizer.h"

#include <simdjson.h>

#include <cstdio>
#include <new>

#include "json/error.h"
#include "json/large_pages.h"
#include "text/utf8.h"

namespace vell::json {
namespace {

static_assert(Text::padding >= simdjson::SIMDJSON_PADDING);

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20; }

std::string hexByte(char byte) {
  char text[16];
  std::snprintf(text, sizeof text, "byte 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
  return text;
}

/// Finds by a slow second look why simdjson refused a text.
[[noreturn]] void throwTokenFault(std::string_view text) {
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
    } else if (inString && isControl(text[i])) {
      throw ParseError("a string holds the control character " + hexByte(text[i]) + ", which must be escaped",
                       i);
    }
  }
  if (inString) throw ParseError("the string that begins here has no end", open);
  throw ParseError("expected a value, found the end of the text", text.size());
}

}  // namespace

// simdjson's first stage, writing into an array of ours.
TokenOffsets tokenize(const Text& text, std::size_t first) {
  if (text.size() == 0) throw ParseError("the text is empty", 0);
  std::unique_ptr<simdjson::internal::dom_parser_implementation> stage;
  if (simdjson::get_active_implementation()->create_dom_parser_implementation(text.size(), 1, stage))
    throw std::bad_alloc();

  // As much as the stage needs at most. The memory is not cleared: only what is used is ever touched.
  const std::size_t size = first + (text.size() + 63) / 64 * 64 + 9;
  TokenOffsets tokens{std::unique_ptr<std::uint32_t[]>(new std::uint32_t[size]), first, 0};
  preferLargePages(tokens.offsets.get(), size * sizeof(std::uint32_t));

  stage->structural_indexes.reset(tokens.offsets.get() + first);
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto error = stage->stage1(bytes, text.size(), simdjson::stage1_mode::regular);
  static_cast<void>(stage->structural_indexes.release());
  if (error) throwTokenFault(text.view());
  tokens.count = stage->n_structural_indexes;
  return tokens;
}

std::string describeAt(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) return "the end of the text";
  const std::string_view rest = text.substr(offset);
  if (isControl(rest.front())) return hexByte(rest.front());
  return "'" + std::string(rest.substr(0, text::utf8Length(rest))) + "'";
}

}  // namespace vell::json

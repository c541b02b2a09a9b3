// Generated and damaged texts, where tables run out of ideas.
#include <gtest/gtest.h>
#include <simdjson.h>

#include <map>
#include <random>
#include <vector>

#include "json/error.h"
#include "json/rewrite.h"

namespace vell::json {
namespace {

/// A generated value, from which the expected text is printed.
struct Value {
  enum { scalar, array, object } kind = scalar;
  std::string text;                                              // of a scalar
  std::vector<Value> elements;                                   // of an array
  std::map<std::string, std::pair<std::string, Value>> members;  // key's meaning: its literal, the value
};

std::string newLine(int depth) { return "\n" + std::string(static_cast<std::size_t>(2 * depth), ' '); }

std::string print(const Value& value, bool isIndented, int depth = 0) {
  if (value.kind == Value::scalar) return value.text;
  const auto lead = [&] { return isIndented ? newLine(depth + 1) : ""; };
  std::string inside;
  for (const Value& each : value.elements)
    inside += (inside.empty() ? "" : ",") + lead() + print(each, isIndented, depth + 1);
  for (const auto& [meaning, member] : value.members)
    inside += (inside.empty() ? "" : ",") + lead() + member.first + (isIndented ? ": " : ":") +
              print(member.second, isIndented, depth + 1);
  if (isIndented && !inside.empty()) inside += newLine(depth);
  return value.kind == Value::array ? "[" + inside + "]" : "{" + inside + "}";
}

/// Spells values at random and tells what they are.
class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  Value value(std::string& text, int depth = 0) {
    Value value;
    const std::size_t choice = pick(depth < 6 ? 8 : 5);
    if (choice < 2) {
      value.text =
          choice == 0 ? (pick(2) == 0 ? "true" : "null") : std::to_string(static_cast<int>(random_()));
      text += value.text;
    } else if (choice < 5) {
      value.text = string(text).literal;
    } else if (choice == 5) {
      value.kind = Value::array;
      list(text, "[]", [&] { value.elements.push_back(this->value(text, depth + 1)); });
    } else {
      value.kind = Value::object;
      list(text, "{}", [&] {
        const String key = string(text);
        text += blank() + ":";
        value.members[key.meaning] = {key.literal, this->value(text, depth + 1)};
      });
    }
    return value;
  }

 private:
  struct String {
    std::string literal;  // with the fewest escapes
    std::string meaning;
  };
  struct Piece {
    const char* spelling;
    const char* literal;
    std::string_view meaning;
  };

  std::size_t pick(std::size_t count) { return random_() % count; }

  std::string blank() { return std::string(pick(3), " \n\t\r"[pick(4)]); }

  template <typename Element>
  void list(std::string& text, const char* brackets, const Element& element) {
    text += brackets[0] + blank();
    const std::size_t count = pick(30) == 0 ? 40 : pick(6);
    for (std::size_t i = 0; i < count; ++i) {
      text += (i > 0 ? "," : "") + blank();
      element();
      text += blank();
    }
    text += brackets[1];
  }

  /// Few different pieces, so that keys repeat, share beginnings and are spelled in several ways.
  String string(std::string& text) {
    static constexpr Piece pieces[] = {
        {"a", "a", "a"},
        {"b", "b", "b"},
        {"\\u0061", "a", "a"},
        {"\\\\", "\\\\", "\\"},
        {"\\\"", "\\\"", "\""},
        {"\\/", "/", "/"},
        {"/", "/", "/"},
        {"é", "é", "é"},
        {"\\u00e9", "é", "é"},
        {"\\ud83d\\ude00", "😀", "😀"},
        {"\\n", "\\n", "\n"},
        {"\x7f", "\x7f", "\x7f"},
        {"\\u0000", "\\u0000", {"\0", 1}},
        {"a longer piece ", "a longer piece ", "a longer piece "},
        {"\\u001F", "\\u001f", "\x1f"},
        {"]},", "]},", "]},"},
    };
    String string;
    text += '"';
    for (std::size_t left = pick(5); left > 0; --left) {
      const Piece& piece = pieces[pick(std::size(pieces))];
      text += piece.spelling;
      string.literal += piece.literal;
      string.meaning += piece.meaning;
    }
    text += '"';
    string.literal = '"' + string.literal + '"';
    return string;
  }

  std::mt19937 random_;
};

TEST(Generated, IsPrintedWithSortedKeys) {
  for (unsigned seed = 0; seed < 3000; ++seed) {
    std::string text;
    const Value value = Generator(seed).value(text);
    ASSERT_EQ(rewrite(text, Layout::compact), print(value, false)) << "seed " << seed << ": " << text;
    ASSERT_EQ(rewrite(text, Layout::indented), print(value, true)) << "seed " << seed << ": " << text;
  }
}

/// Whatever stands in a text's place, it is either refused or means the same after rewriting.
TEST(Generated, DamagedTextsAreRefusedOrRewritten) {
  simdjson::dom::parser judge;
  std::string text;
  for (unsigned seed = 0; text.size() < 400; ++seed) {
    text.clear();
    Generator(seed).value(text);
  }
  constexpr std::string_view replacements("\0\x01\"\\{}[],:0-eu \x80\xff", 17);
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (const char replacement : replacements) {
      std::string damaged = text;
      damaged[i] = replacement;
      try {
        const std::string once = rewrite(damaged, Layout::indented);
        ASSERT_EQ(rewrite(once, Layout::indented), once) << "byte " << i << " of " << damaged;
      } catch (const ParseError& error) {
        ASSERT_LE(error.offset(), damaged.size());
        ASSERT_NE(judge.parse(damaged).error(), simdjson::SUCCESS) << error.what() << " in " << damaged;
      }
    }
  }
}

}  // namespace
}  // namespace vell::json

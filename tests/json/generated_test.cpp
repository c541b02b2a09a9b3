// Generated and damaged texts, where tables run out of ideas.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "json/error.h"
#include "json/rewrite.h"

namespace vell::json {
namespace {

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  std::string value(int depth = 0) {
    switch (pick(depth < 6 ? 8 : 5)) {
      case 0:
        return pick(2) == 0 ? "true" : "null";
      case 1:
        return std::to_string(static_cast<int>(random_()));
      case 2:
      case 3:
      case 4:
        return string();
      case 5:
        return "[" + list([&] { return value(depth + 1); }) + "]";
      default:
        return "{" + list([&] { return string() + blank() + ":" + value(depth + 1); }) + "}";
    }
  }

 private:
  std::size_t pick(std::size_t count) { return random_() % count; }

  std::string blank() { return std::string(pick(3), " \n\t\r"[pick(4)]); }

  template <typename Element>
  std::string list(const Element& element) {
    std::string text = blank();
    const std::size_t count = pick(30) == 0 ? 40 : pick(6);
    for (std::size_t i = 0; i < count; ++i) text += (i > 0 ? "," : "") + blank() + element() + blank();
    return text;
  }

  /// Few different pieces, so that keys repeat, share beginnings and are spelled in several ways.
  std::string string() {
    static constexpr const char* pieces[] = {"a",       "b",   "\\u0061", "\\\\",    "\\\"",
                                             "\\/",     "/",   "é",       "\\u00e9", "\\ud83d\\ude00",
                                             "😀",       "\\n", "\x7f",    "\\u0000", "a longer piece ",
                                             "\\u001F", ",",   "]}"};
    std::string text = "\"";
    for (std::size_t left = pick(5); left > 0; --left) text += pieces[pick(std::size(pieces))];
    return text + "\"";
  }

  std::mt19937 random_;
};

TEST(Generated, AgreesWithASortedTree) {
  for (unsigned seed = 0; seed < 5000; ++seed) {
    const std::string text = Generator(seed).value();
    const auto tree = nlohmann::json::parse(text);
    ASSERT_EQ(rewrite(text, Layout::compact), tree.dump()) << "seed " << seed << ": " << text;
    ASSERT_EQ(rewrite(text, Layout::indented), tree.dump(2)) << "seed " << seed << ": " << text;
  }
}

/// Whatever stands in a text's place, it is either refused or means the same after rewriting.
TEST(Generated, DamagedTextsAreRefusedOrRewritten) {
  std::string text;
  for (unsigned seed = 0; text.size() < 400; ++seed) text = Generator(seed).value();
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
        ASSERT_FALSE(nlohmann::json::accept(damaged)) << error.what() << " in " << damaged;
      }
    }
  }
}

}  // namespace
}  // namespace vell::json

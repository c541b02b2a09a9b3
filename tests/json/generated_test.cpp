// Random and damaged texts, where tables run out of ideas.
#include <gtest/gtest.h>
#include <simdjson.h>

#include "json/error.h"
#include "json/rewrite.h"
#include "json/writer.h"
#include "tests/support/random_text.h"

namespace vell::json {
namespace {

/// Few different pieces of strings, so that keys repeat, share beginnings and are spelled in several ways.
const tests::Forms forms = {
    {"value",
     {"7", "-123", "true", "null", "`string`", "`string`", "[`blank`]", "[`elements`]", "[`elements`]",
      "{`blank`}", "{`members`}", "{`members`}", "{`five`,`five`,`five`,`members`}"}},
    {"elements", {"`blank``value``blank`", "`elements`,`elements`"}},
    {"member", {"`blank``string``blank`:`blank``value``blank`"}},
    {"members", {"`member`", "`member`,`members`", "`member`,`members`"}},
    {"five", {"`member`,`member`,`member`,`member`,`member`"}},
    {"string", {R"("`pieces`")"}},
    {"pieces", {"", "`piece`", "`piece``pieces`", "`piece``pieces`"}},
    {"piece",
     {"a", "b", R"(\u0061)", R"(\\)", R"(\")", R"(\/)", "/", "é", R"(\u00e9)", R"(\ud83d\ude00)", R"(\n)",
      "\x7f", R"(\u0000)", "a longer piece ", R"(\u001F)", "]},"}},
    {"blank", {"", "", " ", "\n\t", "\r  "}},
};

std::string randomJson(unsigned seed) {
  std::mt19937 random(seed);
  return tests::randomText(forms, "value", random);
}

/// The value as it must be written, taken from another reader.
std::string print(simdjson::dom::element value, bool isIndented, std::size_t depth = 0) {
  const auto line = [&](std::size_t levels) { return isIndented ? "\n" + std::string(2 * levels, ' ') : ""; };
  std::string inside;
  const auto add = [&](const std::string& key, simdjson::dom::element child) {
    inside += (inside.empty() ? "" : ",") + line(depth + 1) + key + print(child, isIndented, depth + 1);
  };
  if (value.is_array()) {
    for (const simdjson::dom::element child : value.get_array()) add("", child);
  } else if (value.is_object()) {
    std::map<std::string_view, simdjson::dom::element> members;
    for (const auto& [key, child] : value.get_object()) members[key] = child;
    for (const auto& [key, child] : members) add(quoted(key) + (isIndented ? ": " : ":"), child);
  } else {
    return simdjson::to_string(value);
  }
  if (!inside.empty()) inside += line(depth);
  return value.is_array() ? "[" + inside + "]" : "{" + inside + "}";
}

TEST(Generated, IsPrintedWithSortedKeys) {
  simdjson::dom::parser reader;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    const std::string text = randomJson(seed);
    const simdjson::dom::element value = reader.parse(text);
    ASSERT_EQ(rewrite(text, Layout::compact), print(value, false)) << "seed " << seed << ": " << text;
    ASSERT_EQ(rewrite(text, Layout::indented), print(value, true)) << "seed " << seed << ": " << text;
  }
}

/// Whatever stands in a text's place, it is either refused or means the same after rewriting.
TEST(Generated, DamagedTextsAreRefusedOrRewritten) {
  simdjson::dom::parser judge;
  std::string text;
  for (unsigned seed = 0; text.size() < 400 || text.size() > 800; ++seed) text = randomJson(seed);
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

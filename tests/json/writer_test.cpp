#include "json/writer.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "json/document.h"

namespace vell::json {
namespace {

TEST(Writer, PutsCommasBetweenMembersAndElements) {
  std::string out = "line ";
  Writer writer(out);
  writer.beginObject().key("empty").beginObject().endObject();
  writer.key("list").beginArray().value(1).beginArray().endArray().beginObject().member("a", "b").endObject();
  writer.value(nullptr).raw(R"({"x":[]})").value(true).endArray();
  writer.key("names").array(std::vector<std::string>{"p", "q"});
  writer.member("null", std::optional<int>()).member("last", std::int64_t{INT64_MIN}).endObject();
  EXPECT_EQ(out, R"(line {"empty":{},"list":[1,[],{"a":"b"},null,{"x":[]},true],"names":["p","q"],)"
                 R"("null":null,"last":-9223372036854775808})");
}

TEST(Writer, EscapesStrings) {
  const struct {
    std::string_view text;
    const char* literal;
  } rows[] = {
      {"", R"("")"},
      {"plain / é 😀", R"("plain / é 😀")"},
      {"\"\\\b\f\n\r\t", R"("\"\\\b\f\n\r\t")"},
      {std::string_view("\0\x1f\x7f", 3), "\"\\u0000\\u001f\x7f\""},
      // A bad byte each: alone, in a broken sequence, in a surrogate, beyond U+10FFFF.
      {"a\xff", "\"a\xEF\xBF\xBD\""},
      {"\xe2\x82(", "\"\xEF\xBF\xBD\xEF\xBF\xBD(\""},
      {"\xed\xa0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {"\"\xf4\x90", "\"\\\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(quoted(row.text), row.literal);
    const std::string_view inner(row.literal + 1, std::strlen(row.literal) - 2);
    for (std::size_t before = 0; before < 20; ++before)
      EXPECT_EQ(json::quoted(std::string(before, '!') + std::string(row.text) + "~"),
                '"' + std::string(before, '!') + std::string(inner) + "~\"");
  }
  std::string out;
  Writer(out).beginObject().member("a\"\n", "\\").endObject();
  EXPECT_EQ(out, R"({"a\"\n":"\\"})");
}

TEST(Writer, WritesDoublesThatReadBackTheSame) {
  const struct {
    double number;
    const char* text;
  } rows[] = {
      {0.0, "0.0"},  {-0.0, "-0.0"},        {1.0, "1.0"},      {1000.0, "1000.0"},
      {0.1, "0.1"},  {-2.5e-7, "-2.5e-07"}, {1e100, "1e+100"}, {0.30000000000000004, "0.30000000000000004"},
      {NAN, "null"}, {-INFINITY, "null"},
  };
  for (const auto& row : rows) {
    std::string text;
    Writer(text).value(row.number);
    EXPECT_EQ(text, row.text);
  }
  std::mt19937_64 random(3);
  for (int i = 0; i < 10'000; ++i) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    std::string text;
    Writer(text).value(number);
    ASSERT_EQ(Document(std::string_view(text)).root().number(), number) << text;
    ASSERT_EQ(Document(std::string_view(text)).root().integer(), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace vell::json

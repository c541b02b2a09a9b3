#include "json/document.h"

#include <gtest/gtest.h>

#include "json/error.h"

namespace vell::json {
namespace {

TEST(Node, ReadsNumbers) {
  constexpr auto none = std::nullopt;
  const struct {
    const char* text;
    std::optional<std::int64_t> integer;
    std::optional<double> number;
  } rows[] = {
      {"0", 0, 0.0},
      {"-0", 0, -0.0},
      {"9223372036854775807", INT64_MAX, 9223372036854775807.0},
      {"-9223372036854775808", INT64_MIN, -9223372036854775808.0},
      {"9223372036854775808", none, 9223372036854775808.0},
      {"1.0", none, 1.0},
      {"1e3", none, 1000.0},
      {"0.1", none, 0.1},
      {"1.7976931348623157e308", none, 1.7976931348623157e308},
      {"5e-324", none, 5e-324},
      {"1e-400", none, 0.0},
      // Valid JSON without a value.
      {"1e400", none, none},
      {"-1e309", none, none},
      // No numbers.
      {"\"1\"", none, none},
      {"true", none, none},
      {"[1]", none, none},
  };
  for (const auto& row : rows) {
    const Document document{row.text};
    EXPECT_EQ(document.root().integer(), row.integer) << row.text;
    EXPECT_EQ(document.root().number(), row.number) << row.text;
  }
}

TEST(Node, ReadsBooleansAndStrings) {
  const Document document{R"([true,false,null,"true","","x\u00e9\ud800","a\u0000b","\ud83d\ude00"])"};
  const auto values = document.root().elements();
  ASSERT_EQ(values.size(), 8u);
  EXPECT_EQ(values[0].boolean(), true);
  EXPECT_EQ(values[1].boolean(), false);
  EXPECT_EQ(values[2].boolean(), std::nullopt);
  EXPECT_EQ(values[2].kind(), Kind::null);
  EXPECT_EQ(values[3].boolean(), std::nullopt);
  EXPECT_EQ(values[0].string(), std::nullopt);
  EXPECT_EQ(values[4].string(), "");
  EXPECT_EQ(values[5].string(), "xé\xEF\xBF\xBD");
  EXPECT_EQ(values[6].string(), std::string_view("a\0b", 3));
  EXPECT_EQ(values[7].string(), "😀");
}

TEST(Node, GoesThroughContainers) {
  const Document document{R"({"b":{"c":[1,[2,{}],"x"]}, "\u0061":null ,"b":[],"":7})"};
  const auto members = document.root().members();
  ASSERT_EQ(members.size(), 4u);
  EXPECT_EQ(members[0].key, "b");
  EXPECT_EQ(members[1].key, "a");
  EXPECT_EQ(members[1].value.offset(), document.text().find("null"));
  EXPECT_EQ(members[2].value.kind(), Kind::array);
  EXPECT_EQ(members[3].key, "");
  EXPECT_EQ(members[3].value.integer(), 7);
  const auto elements = members[0].value.find("c")->elements();
  ASSERT_EQ(elements.size(), 3u);
  EXPECT_EQ(elements[1].elements()[1].members().size(), 0u);
  EXPECT_EQ(elements[2].string(), "x");

  EXPECT_EQ(document.root().find("b")->kind(), Kind::array) << "the last of repeated keys counts";
  EXPECT_EQ(document.root().find("a")->kind(), Kind::null);
  EXPECT_FALSE(document.root().find("c").has_value());
  EXPECT_FALSE(elements[0].find("b").has_value());
  EXPECT_TRUE(document.root().elements().empty());
  EXPECT_TRUE(elements[1].members().empty());
}

}  // namespace
}  // namespace vell::json

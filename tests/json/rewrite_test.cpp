#include <gtest/gtest.h>

#include "json/error.h"
#include "json/rewrite.h"

namespace vell::json {
namespace {

std::string repeated(std::string_view piece, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(Rewrite, KeepsEveryValueAndSortsKeys) {
  const struct {
    const char* text;
    const char* compact;
    const char* indented;
  } rows[] = {
      {"null", "null", "null"},
      {" [ ] ", "[]", "[]"},
      {"{\n}", "{}", "{}"},
      {"[1,[2,{}],[]]", "[1,[2,{}],[]]", "[\n  1,\n  [\n    2,\n    {}\n  ],\n  []\n]"},
      {R"({"b":1,"a":{"d":[],"c":true}})", R"({"a":{"c":true,"d":[]},"b":1})",
       "{\n  \"a\": {\n    \"c\": true,\n    \"d\": []\n  },\n  \"b\": 1\n}"},
      // Numbers keep their own text.
      {"[1.0,1e400,-0,123456789012345678901234567890,0.10E+02]",
       "[1.0,1e400,-0,123456789012345678901234567890,0.10E+02]",
       "[\n  1.0,\n  1e400,\n  -0,\n  123456789012345678901234567890,\n  0.10E+02\n]"},
      // Keys: byte order of their meaning, prefixes first, the last of repeated ones.
      {R"({"ab":1,"a":2,"B":3,"é":4,"aaaaaaaab":5,"aaaaaaaaa":6})",
       R"({"B":3,"a":2,"aaaaaaaaa":6,"aaaaaaaab":5,"ab":1,"é":4})", nullptr},
      {R"({"persistentId2":1,"persistentIds":2,"persistentId":3,"persistentId10":4,"persistent":5,"persiste":6})",
       R"({"persiste":6,"persistent":5,"persistentId":3,"persistentId10":4,"persistentId2":1,"persistentIds":2})",
       nullptr},
      {R"({"a":1,"b":2,"a":3,"\u0061":4})", R"({"a":4,"b":2})", nullptr},
      {R"({"a\u0000":1,"a":2})", R"({"a":2,"a\u0000":1})", nullptr},
      {R"({"\ud800":1,"\ud801":2})", R"({"\ud800":1,"\ud801":2})", nullptr},
      // Strings: the fewest escapes.
      {R"("\/ \u00e9 \u000A \u001f \"\\ \ud83d\ude00 \uD83D x \ude00\u0022")",
       "\"/ é \\n \\u001f \\\"\\\\ 😀 \\ud83d x \\ude00\\\"\"", nullptr},
      {R"(["a]\\",":,"])", R"(["a]\\",":,"])", nullptr},
  };
  for (const auto& row : rows) {
    const std::string compact = rewrite(row.text, Layout::compact);
    EXPECT_EQ(compact, row.compact) << row.text;
    if (row.indented != nullptr) {
      EXPECT_EQ(rewrite(row.text, Layout::indented), row.indented) << row.text;
    }
    EXPECT_EQ(rewrite(rewrite(row.text, Layout::indented), Layout::compact), row.compact) << row.text;
  }
}

TEST(Rewrite, NamesTheFaultAndItsByte) {
  const std::string deep = repeated("[", maxDepth + 1);
  const struct {
    std::string text;
    std::size_t offset;
    std::string fault;
  } rows[] = {
      {"", 0, "the text is empty"},
      {"  \n", 3, "expected a value, found the end of the text"},
      {"[1,]", 3, "expected a value, found ']'"},
      {"[", 1, "expected a value or ']', found the end of the text"},
      {"[1 2]", 3, "expected ',' or ']', found '2'"},
      {"[1}", 2, "expected ',' or ']', found '}'"},
      {"{\"a\" 1}", 5, "expected ':', found '1'"},
      {"{\"a\":}", 5, "expected a value, found '}'"},
      {"{1:2}", 1, "expected a key in double quotes or '}', found '1'"},
      {"{\"a\":1,}", 7, "expected a key in double quotes, found '}'"},
      {"1 1", 2, "expected the end of the text, found '1'"},
      {"]", 0, "expected a value, found ']'"},
      {"nul", 0, "'nul' is not a JSON value"},
      {"[01]", 1, "'01' is not a JSON number"},
      {"[1.]", 1, "'1.' is not a JSON number"},
      {"[-]", 1, "'-' is not a JSON number"},
      {repeated("é", 60), 0, "'" + repeated("é", 39) + "…' is not a JSON value"},
      // NUL bytes: behind a value, in its place, in and behind a scalar, in a string.
      {{"{}\0", 3}, 2, "expected the end of the text, found byte 0x00"},
      {{"[]\n\0\n", 5}, 3, "expected the end of the text, found byte 0x00"},
      {{"\0", 1}, 0, "expected a value, found byte 0x00"},
      {{"[\0]", 3}, 1, "expected a value or ']', found byte 0x00"},
      {{"{\0\"a\":1}", 8}, 1, "expected a key in double quotes or '}', found byte 0x00"},
      {{"{\"a\":1\0}", 8}, 5, "'1?' is not a JSON number"},
      {{"true\0", 5}, 0, "'true?' is not a JSON value"},
      {{"\"a\0b\"", 5}, 2, "a string holds the control character byte 0x00, which must be escaped"},
      {"\"a", 0, "the string that begins here has no end"},
      {"\"a\tb\"", 2, "a string holds the control character byte 0x09, which must be escaped"},
      {"\"\\x\"", 1, "a string holds an unknown escape"},
      {"\"\\u12g4\"", 1, "a \\u escape needs four hexadecimal digits"},
      {"\"\\u12\"", 1, "a \\u escape needs four hexadecimal digits"},
      {"[\"é\xff\"]", 4, "byte 0xFF is not UTF-8"},
      {"\"\xed\xa0\x80\"", 1, "byte 0xED is not UTF-8"},
      {deep, maxDepth, "nested deeper than 20000 levels"},
  };
  for (const auto& row : rows) {
    const std::string expected = "Invalid JSON at byte " + std::to_string(row.offset) + ": " + row.fault;
    try {
      rewrite(row.text, Layout::compact);
      ADD_FAILURE() << "accepted " << row.text;
    } catch (const ParseError& error) {
      EXPECT_EQ(error.what(), expected) << row.text.substr(0, 60);
      EXPECT_EQ(error.offset(), row.offset);
    }
  }
}

TEST(Rewrite, HoldsTheDeepestText) {
  const std::string objects = repeated("{\"k\":", maxDepth - 1) + "[1]" + repeated("}", maxDepth - 1);
  EXPECT_EQ(rewrite(objects, Layout::compact), objects);
  const std::string arrays = repeated("[", maxDepth) + "\"a\"" + repeated("]", maxDepth);
  EXPECT_EQ(rewrite(arrays, Layout::compact), arrays);
}

/// Joins the parts that it is given.
class Parts : public Sink {
 public:
  explicit Parts(std::size_t size) : Sink(size), size_(size) {}
  std::string take() {
    passAll();
    return text_;
  }

 private:
  void pass(std::string_view part) override {
    EXPECT_LE(part.size(), size_);
    text_.append(part);
  }

  std::size_t size_;
  std::string text_;
};

TEST(Write, CrossesTheEndsOfParts) {
  const std::string text = R"({"b":[1,-2.5e3,"x\/\u00e9",{},[]],"a":{"key":")" + repeated("long ", 70) +
                           R"(","deep":)" + repeated("[", 40) + repeated("]", 40) + "}}";
  const Document document{text};
  for (const Layout layout : {Layout::compact, Layout::indented}) {
    const std::string whole = rewrite(text, layout);
    for (std::size_t size = 1; size <= 100; ++size) {
      Parts sink(size);
      write(document.root(), layout, sink);
      EXPECT_EQ(sink.take(), whole) << size;
    }
  }
}

}  // namespace
}  // namespace vell::json

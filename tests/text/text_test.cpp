#include <gtest/gtest.h>

#include <vector>

#include "text/display_width.h"
#include "text/edit_distance.h"
#include "text/folding.h"
#include "text/lines.h"
#include "text/utf8.h"

namespace vell::text {
namespace {

TEST(Utf8, TellsCharactersFromOtherBytes) {
  struct Row {
    std::string_view text;
    std::size_t length;
    char32_t value;
  };
  const Row rows[] = {
      {"", 0, 0xFFFD},
      {"a", 1, 'a'},
      {std::string_view("\0", 1), 1, 0},
      // The first and the last character of each length
      {"\xC2\x80", 2, 0x80},
      {"\xDF\xBF", 2, 0x7FF},
      {"\xE0\xA0\x80", 3, 0x800},
      {"\xED\x9F\xBF", 3, 0xD7FF},
      {"\xEE\x80\x80", 3, 0xE000},
      {"\xEF\xBF\xBF", 3, 0xFFFF},
      {"\xF0\x90\x80\x80", 4, 0x10000},
      {"\xF4\x8F\xBF\xBF", 4, 0x10FFFF},
      // Overlong forms, surrogates, too large
      {"\xC0\x80", 0, 0xFFFD},
      {"\xC1\xBF", 0, 0xFFFD},
      {"\xE0\x9F\xBF", 0, 0xFFFD},
      {"\xED\xA0\x80", 0, 0xFFFD},
      {"\xF0\x8F\xBF\xBF", 0, 0xFFFD},
      {"\xF4\x90\x80\x80", 0, 0xFFFD},
      {"\xF5\x80\x80\x80", 0, 0xFFFD},
      // Cut off, or continued by something else
      {"\x80", 0, 0xFFFD},
      {"\xC3", 0, 0xFFFD},
      {"\xC3\x28", 0, 0xFFFD},
      {"\xE2\x82", 0, 0xFFFD},
      {"\xE2\x82\x28", 0, 0xFFFD},
      {"\xF0\x9F\x98", 0, 0xFFFD},
      {"\xF0\x9F\x98\xC0", 0, 0xFFFD},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(utf8Length(row.text), row.length) << row.text;
    EXPECT_EQ(firstCodePoint(row.text).value, row.value) << row.text;
    const std::string text = "é" + std::string(row.text) + "z";
    const bool isValid = row.length == row.text.size();
    EXPECT_EQ(findInvalidUtf8(text), isValid ? std::nullopt : std::optional<std::size_t>(2)) << row.text;
    if (!isValid || row.text.empty()) continue;
    std::string encoded;
    appendUtf8(encoded, row.value);
    EXPECT_EQ(encoded, row.text);
  }
  EXPECT_EQ(replaceInvalidUtf8("a\xFF\xE2\x82z€"), "a\uFFFD\uFFFD\uFFFDz€");
}

TEST(Lines, EndAtLineFeeds) {
  struct Row {
    std::string_view text;
    std::vector<std::string_view> lines;
  };
  const Row rows[] = {
      {"", {}},
      {"\n", {""}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\n\nb", {"a", "", "b"}},
      {"a\r\nb", {"a", "b"}},
      {"a\rb\r\r\n", {"a\rb\r"}},
  };
  for (const Row& row : rows) {
    Lines lines(row.text);
    std::vector<std::string_view> found;
    while (lines.next()) {
      found.push_back(lines.line());
      EXPECT_EQ(lines.number(), found.size());
      EXPECT_EQ(lineNumber(row.text, lines.offset()), found.size());
      lines.unread();
      ASSERT_TRUE(lines.next());
      EXPECT_EQ(lines.line(), found.back());
    }
    EXPECT_EQ(found, row.lines) << row.text;
  }
}

TEST(Nearest, ToleratesAFewSlips) {
  const std::vector<std::string_view> words{"get", "delete", "evaluate", "observe", "selection"};
  const std::string pasted(1000, 'e');
  struct Row {
    std::string_view word, nearest;
  };
  const Row rows[] = {
      {"get", "get"},
      {"gte", "get"},
      {"gt", "get"},
      {"GET", "get"},
      {"g", ""},
      {"", ""},
      {"delte", "delete"},
      {"dleete", "delete"},
      {"dlte", ""},
      {"eval", "evaluate"},
      {"obsrvee", "observe"},
      {"selectoin", "selection"},
      {"write", ""},
      {"ev", ""},
      {pasted, ""},
  };
  for (const Row& row : rows) EXPECT_EQ(nearest(row.word, words), row.nearest) << row.word;
}

TEST(DisplayWidth, CountsColumns) {
  struct Row {
    std::string_view text, shown;
    std::size_t width;
    std::string_view first, last;  ///< three columns of it
  };
  const Row rows[] = {
      {"abc", "abc", 3, "abc", "abc"},
      {"abcd", "abcd", 4, "ab…", "…cd"},
      {"a\tb\x01", "a b?", 4, "a …", "…b?"},
      {"\xFF\x7F", "??", 2, "??", "??"},
      {"e\u0301e", "e\u0301e", 2, "e\u0301e", "e\u0301e"},
      {"日本", "日本", 4, "日…", "…本"},
      {"a日本", "a日本", 5, "a…", "…本"},
      {"😀b", "😀b", 3, "😀b", "😀b"},
      {"⌚🪀", "⌚🪀", 4, "⌚…", "…🪀"},
  };
  for (const Row& row : rows) {
    const DisplayText shown = displayText(row.text);
    EXPECT_EQ(shown.text, row.shown) << row.text;
    EXPECT_EQ(shown.width, row.width) << row.text;
    EXPECT_EQ(displayWidth(row.shown), row.width) << row.text;
    EXPECT_EQ(firstColumns(shown, 3).text, row.first) << row.text;
    EXPECT_EQ(lastColumns(shown, 3).text, row.last) << row.text;
  }
}

TEST(Folding, DropsCaseAndAccents) {
  struct Row {
    std::string_view text, withoutCase, withoutAccents;
  };
  const Row rows[] = {
      {"", "", ""},
      {"Plain Text", "plain text", "Plain Text"},
      {"ÀÉÿŸ", "àéÿÿ", "AEyY"},
      {"ŁódŹ×", "łódź×", "LodZ×"},
      {"ΣΑΣς", "σασσ", "ΣΑΣς"},
      {"ЁЖ", "ёж", "ЕЖ"},
      {"ԱՖ ႠჀ Ꭰꭰ Ⓐ Ａ 𐐀", "աֆ ⴀⴠ ᎠᎠ ⓐ ａ 𐐨", "ԱՖ ႠჀ Ꭰꭰ Ⓐ Ａ 𐐀"},
      {"K ſ ẞ ᾼ İ ı Å", "k s ß ᾳ İ ı å", "K ſ ẞ Α I ı A"},
      {"E\u0301 e\u0301", "é é", "E e"},
      {"\u017F\u0301 \u212A\u030C", "ś ǩ", "ſ K"},
      {"각 \u1100\u1161", "각 가", "각 가"},
      {"か\u3099", "が", "が"},
      {"\xFF\u0301É", "\uFFFD\u0301é", "\uFFFDÉ"},
      {"日本 ß", "日本 ß", "日本 ß"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(foldCase(row.text), row.withoutCase) << row.text;
    EXPECT_EQ(foldAccents(row.text), row.withoutAccents) << row.text;
    EXPECT_TRUE(TextSearch(row.withoutCase).isIn(row.text)) << row.text;
  }
}

}  // namespace
}  // namespace vell::text

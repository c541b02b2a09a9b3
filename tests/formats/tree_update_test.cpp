#include "tests/formats/update_case.h"

namespace vell::formats {
namespace {

TEST(TreeUpdate, WritesTheOutlinesIdWhereOneStood) {
  // clang-format off
  const struct {
    const char* format;
    const char* source;
    const char* written;
  } cases[] = {
      {"json", R"({"id": "a", "rows": [{"text": "b"}], "x": 1})", R"({"id": "b&c", "rows": [{"text": "b"}], "x": 1})"},
      {"json", R"({"id": 7, "persistentId":"a","rows":[]})", R"({"id": 7, "persistentId":"b&c","rows":[]})"},
      {"json", R"({"rows":[]})", R"({"rows":[]})"},
      {"json", "[]", "[]"},
      {"opml", "<opml><head><vell-id>a</vell-id></head><body/></opml>", "<opml><head><vell-id>b&amp;c</vell-id></head><body/></opml>"},
      {"opml", "<opml><head/><body/></opml>", "<opml><head/><body/></opml>"},
  };
  // clang-format on
  for (const auto& row : cases) {
    ChangedFile file(row.format, row.source);
    file.outline().setPersistentId("b&c");
    EXPECT_EQ(file.written(), row.written);
  }
}

TEST(TreeUpdate, DepthCostsNoMoreThanRows) {
  const struct {
    const char* format;
    std::size_t depth;
    const char *head, *begin, *end, *tail;
  } cases[] = {
      {"json", 9'900, "[\n", "{\"text\":\"x\",\"children\":[\n", "]}\n", "]"},
      {"opml", 20'000, "<opml><body>\n", "<outline text='x'>\n", "</outline>\n", "</body></opml>"},
  };
  for (const auto& row : cases) {
    std::string source = row.head;
    for (std::size_t level = 0; level < row.depth; ++level) source += row.begin;
    for (std::size_t level = 0; level < row.depth; ++level) source += row.end;
    source += row.tail;
    ChangedFile file(row.format, source);
    EXPECT_EQ(file.written(), source);
    const Row* deepest = &file.row("x");
    while (deepest->firstChild()) deepest = deepest->firstChild();
    file.edit().setText(*deepest, Text("deepest"));
    for (std::size_t level = 0; level < 100; ++level) {
      file.create(level == 0 ? "" : std::to_string(level - 1), std::to_string(level));
    }
    EXPECT_LT(file.written().size(), source.size() + 100 * 200);
    EXPECT_LT(writeAll(row.format, file.outline()).size(), row.depth * 300);
  }
}

}  // namespace
}  // namespace vell::formats

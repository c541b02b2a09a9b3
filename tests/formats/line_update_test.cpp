#include <gtest/gtest.h>

#include "formats/document_header.h"
#include "tests/formats/update_case.h"

namespace vell::formats {
namespace {

// clang-format off
const UpdateCase vellCases[] = {
    // A changed row keeps what still means the same of its line.
    {"mark, blanks and trailer", "\t\n1)  a  {#p   k=\"v\"}  \n7. b\n[x]\tc {done}\n",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "B"); rows.text("c {done}", "C"); },
     "\t\n1)  A  {#p   k=\"v\"}  \n7. B\n[x]\tC\n"},
    {"inline markup", "*a* and __b__\n", [](ChangedFile& rows) { rows.text("a and b", "_a_ and **b** and c"); },
     "*a* and __b__ and c\n"},
    {"items of a trailer", "a { b=1 #p \"c\"=\"2\"  type=note\td=3}\n",
     [](ChangedFile& rows) { rows.attributes("a", {{"b", "x y"}, {"d", "3"}, {"e", "4"}}); rows.edit().setPersistentId(rows.row("a"), "q"); },
     "a { b=\"x y\" #q  type=note\td=3 e=4}\n"},
    {"attributes in another order", "a {b=1 c=2}\n",
     [](ChangedFile& rows) { rows.attributes("a", {{"c", "2"}, {"b", "1"}}); },
     "a {c=2 b=1}\n"},
    {"a trailer comes and goes", "a\nb {k=v}\n",
     [](ChangedFile& rows) { rows.attributes("a", {{"k", "v"}}); rows.attributes("b", {});  },
     "a {k=v}\nb\n"},
    {"type and state", "- [ ] a\n[ ]  b\n- c {type=task}\n",
     [](ChangedFile& rows) { rows.edit().setType(rows.row("[ ] a"), RowType::quote); rows.attributes("b", {{"done", "true"}}); rows.text("c", "C"); },
     "> [ ] a\n[x]  b\n- C {type=task}\n"},
    {"what would be a mark or an empty row", "a\nb\nc\n\\\n---\n",
     [](ChangedFile& rows) {
       const Row* c = rows.row("c").next();
       rows.edit().setType(*c->next(), RowType::body);
       rows.edit().setText(*c, Text("1. d"));
       rows.text("a", "\\# a"); rows.text("b", "\\[ ] b"); rows.text("c", "");
     },
     "\\# a\n\\[ ] b\n\\\n1\\. d\n\\\n"},
    {"code keeps its fence and info", "\t\n~~~~  c++   {#p}\na\n~~~~~\n```\nb\n```\n",
     [](ChangedFile& rows) { rows.text("a", "~~~"); rows.text("b", "```"); },
     "\t\n~~~~  c++   {#p}\n~~~\n~~~~\n````\n```\n````\n"},
    {"code keeps its lines", "a\n\t```\n\t b\n c\n\n\t```\n",
     [](ChangedFile& rows) { rows.attributes(" b\n c\n", {{"language", "c"}}); },
     "a\n\t``` c\n\t b\n c\n\n\t```\n"},
    {"the id of two rows", "a {#p}\nb {#p}\n",
     [](ChangedFile& rows) { rows.text("b", "c"); },
     "a {#p}\nc\n"},
    // Rows that move take their lines with them.
    {"deeper and back", "a\nb  {k=v}\n\t```\n\tx\n\t\ty\n z\n\n\t```\nc\n\td\n\t\te",
     [](ChangedFile& rows) { rows.move("b", "a"); rows.move("d", ""); },
     "a\n\tb  {k=v}\n\t\t```\n\t\tx\n\t\t\ty\n\t\t z\n\n\t\t```\nc\nd\n\te"},
    // Separators.
    {"a deleted row takes one", "a\n\n\nb\nc\n\nd\n\n",
     [](ChangedFile& rows) { rows.remove("b"); rows.remove("d"); },
     "a\n\n\nc\n\n"},
    {"the first and the only rows", "\n\na\n\nb\n",
     [](ChangedFile& rows) { rows.remove("a"); },
     "\n\nb\n"},
    {"all rows", "vell 1\nt: T\n\na\nb\n",
     [](ChangedFile& rows) { rows.remove("a"); rows.remove("b"); },
     "vell 1\nt: T\n\n"},
    {"new rows stand as those beside them", "# a\n\tb\n\n# c\n\td\n\te",
     [](ChangedFile& rows) { rows.create("", "f"); rows.create("", "g"); rows.create("a", "h"); rows.create("c", "i", "d"); },
     "# a\n\tb\n\th\n\n# c\n\ti\n\td\n\te\n\nf\n\ng"},
    {"a row that leaves a group and joins another", "a\nb\n\nc\nd\ne\n",
     [](ChangedFile& rows) { rows.move("b", "", "e"); },
     "a\n\nc\nd\nb\ne\n"},
    {"a row that comes up", "a\nb\n\nc\nd\n\ne\n",
     [](ChangedFile& rows) { rows.move("d", "", "b"); },
     "a\nd\nb\n\nc\n\ne\n"},
    // The ends of the file.
    {"line ends, byte order mark and no last line feed", "\xEF\xBB\xBF" "a\r\n\tb",
     [](ChangedFile& rows) { rows.create("b", "c"); rows.edit().setType(rows.row("b"), RowType::code); },
     "\xEF\xBB\xBF" "a\r\n\t```\r\n\tb\r\n\t```\r\n\t\tc"},
    {"nothing", "", [](ChangedFile& rows) { rows.create("", "a"); }, "a\n"},
    {"only a header", "\xEF\xBB\xBFvell 1\r\nt: T", [](ChangedFile& rows) { rows.create("", "a"); }, "\xEF\xBB\xBFvell 1\r\nt: T\r\n\r\na\r\n"},
    {"a first row that reads like a header", "a\nvell 1\n", [](ChangedFile& rows) { rows.remove("a"); }, "\nvell 1\n"},
    // Times stand in files that were made here, and in rows that tell them.
    {"notes of others", "vell 1\n\na\nb {modified=2026-01-01T00:00:00Z}\nc {created=2026-01-01T00:00:00Z}\n",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "B"); rows.create("", "d"); rows.text("c", "C"); },
     "vell 1\n\nA\nB {modified=2026-09-21T14:13:25Z}\nC {created=2026-01-01T00:00:00Z modified=2026-09-21T14:13:25Z}\nd\n"},
    {"a file made here", "vell 1\ncreated:   2026-01-01T00:00:00Z\n\na {created=2026-01-01T00:00:00.000Z}\n",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.create("", "b"); },
     "vell 1\ncreated:   2026-01-01T00:00:00Z\n\nA {created=2026-01-01T00:00:00.000Z modified=2026-09-21T14:13:25Z}\nb {created=2026-09-21T14:13:25Z}\n"},
};

const UpdateCase txtCases[] = {
    {"line ends as they were", "a\r\nb\rc\nd",
     [](ChangedFile& rows) { rows.text("b", "B"); rows.create("", "e"); rows.create("a", "f"); },
     "a\r\n\tf\r\nB\rc\nd\r\ne"},
    {"old line ends", "a\rb\r", [](ChangedFile& rows) { rows.create("b", "c"); }, "a\rb\r\tc\r"},
    {"line feeds within a text, and what only looks like one", "a\xE2\x80\xA8 b\n", [](ChangedFile& rows) { rows.create("", "c&#13;&#10;d"); }, "a\xE2\x80\xA8 b\nc  d\n"},
    {"empty rows", "\na\n\n\nb", [](ChangedFile& rows) { rows.text("b", ""); rows.remove("a"); }, "\n\n\n\n"},
    {"an empty row between line ends of two kinds", "a\rb\nc", [](ChangedFile& rows) { rows.text("b", ""); }, "a\r\r\nc"},
    {"an empty row at the end", "a\n\nb", [](ChangedFile& rows) { rows.remove("b"); }, "a\n\n"},
    {"all rows", "\xEF\xBB\xBF" "a\n", [](ChangedFile& rows) { rows.remove("a"); }, "\xEF\xBB\xBF"},
    {"tabs that are text stay", "a\n\t\t\tb\n", [](ChangedFile& rows) { rows.create("", "c", "a"); rows.move("\t\tb", ""); }, "c\na\n\t\tb\n"},
};
// clang-format on

TEST(LineUpdate, ChangesWhatChanged) {
  for (const UpdateCase& row : vellCases) checkUpdate("vell", row);
  for (const UpdateCase& row : txtCases) checkUpdate("txt", row);
}

TEST(DocumentHeader, RewritesTheKeysThatChanged) {
  const UpdateCase cases[] = {
      {"keys come, change and go",
       "vell 1\r\n\"a\":  1 # c\r\nb:\r\n  - 2\r\n# of c\r\nc: 3\r\nb: 4\r\n\r\nrow",
       [](ChangedFile& rows) {
         rows.outline().setFrontMatter({{"a", "x"}, {"b", "y\nz"}, {"d e", "yes"}});
       },
       "vell 1\r\n\"a\":  x\r\nb:\r\n  - 2\r\n# of c\r\nb: \"y\\nz\"\r\n\"d e\": yes\r\n\r\nrow"},
      {"the outline's id where one stood", "vell 1\nid: x\n\"id\": y\n",
       [](ChangedFile& rows) { rows.outline().setPersistentId("z"); }, "vell 1\nid: z\n\"id\": y\n"},
      {"comments before the first key", "vell 1\n# of a\na: 1 # c\n\nrow\n",
       [](ChangedFile& rows) {
         rows.outline().setFrontMatter({{"a", "2"}});
       },
       "vell 1\n# of a\na: 2\n\nrow\n"},
      {"no id is forced on a file", "vell 1\nt: T\n",
       [](ChangedFile& rows) { rows.outline().setPersistentId("z"); }, "vell 1\nt: T\n"},
      {"a header for what has none", "row\n",
       [](ChangedFile& rows) {
         rows.outline().setFrontMatter({{"t", "T"}});
       },
       "vell 1\nt: T\n\nrow\n"},
  };
  for (const UpdateCase& row : cases) {
    ChangedFile rows("vell", row.source);
    row.change(rows);
    EXPECT_EQ(rows.written(), row.written) << row.about;
  }
}

TEST(DocumentHeader, TakesAnyYamlBehindAKey) {
  const struct {
    const char* source;
    std::size_t rows;
    const char* value;  ///< of "a"
  } cases[] = {
      {"---\n# b\na: &x [1,\n2]\n? b\n: c\n<<: *x\nd: {\n}\n...\nrow\n", 1, "&x [1,\n2]\n? b\n: c"},
      {"---\n# A\n---\nrow\n", 4, nullptr},
      {"---\n\na: 1\n\n---\n", 3, nullptr},
  };
  for (const auto& row : cases) {
    ChangedFile rows("markdown", row.source);
    EXPECT_EQ(rows.outline().rowCount(), row.rows) << row.source;
    const std::string* value = rows.outline().frontMatter().find("a");
    EXPECT_EQ(value ? *value : "none", row.value ? row.value : "none") << row.source;
    EXPECT_EQ(rows.written(), row.source);
  }
}

TEST(YamlValue, IsReadBackAsTheString) {
  const struct {
    const char* value;
    const char* before;
    const char* written;
  } cases[] = {
      {"A shed", "x", "A shed"},
      {"http://x#y", "x", "http://x#y"},
      {"a, b: c", "x", "\"a, b: c\""},
      {"a #b", "x", "\"a #b\""},
      {"- a", "x", "\"- a\""},
      {"'a'", "x", "\"'a'\""},
      {"a:", "x", "\"a:\""},
      {" a", "x", "\" a\""},
      {"", "x", "\"\""},
      {"a\nb\\\"", "x", "\"a\\nb\\\\\\\"\""},
      {"null", "x", "\"null\""},
      {"Yes", "\"No\"", "\"Yes\""},
      {"false", "true", "false"},
      {"1.0", "x", "\"1.0\""},
      {"-2", "1", "-2"},
      {"2026-02-01", "2026-01-01", "2026-02-01"},
      {"2026-02-01", "\"2026-01-01\"", "\"2026-02-01\""},
  };
  for (const auto& row : cases) EXPECT_EQ(yamlValue(row.value, row.before), row.written);
}

}  // namespace
}  // namespace vell::formats

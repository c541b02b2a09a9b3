#include "tests/formats/update_case.h"

namespace vell::formats {
namespace {

// clang-format off
const UpdateCase cases[] = {
    // A changed row keeps what still means the same.
    {"lines of a paragraph", "The *first*  \nline `of`\nthree.\n",
     [](ChangedFile& rows) { rows.edit().setText(rows.row("The first\nline of three."), Text("The first\nline of more.")); },
     "The first  \nline of more.\n"},
    {"indentation, bullets and numbers", "* a\n+   b\n  wrapped\n\n7) c\n\n   > d\n   > e\n",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b wrapped", "b Wrapped"); rows.text("c", "C"); rows.text("d e", "d E"); },
     "* A\n+   b\n    Wrapped\n\n7) C\n\n   > d\n   > E\n"},
    {"headings", "a\n===\n\nb\n-\n\n###  c ###\n",
     [](ChangedFile& rows) { rows.text("a", "longer"); rows.text("b", "B"); rows.text("c", "C"); },
     "longer\n======\n\nB\n---\n\n###  C\n"},
    {"trailers and fences", "a { k=1  #p}\n\n~~~~ js {x=y}\nb\n~~~~\n",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "~~~"); },
     "A { k=1  #p}\n\n~~~~ js {x=y}\n~~~\n~~~~\n"},
    {"what stands as it is", "| a |\n|---|\n\n<!-- b -->\n\n    c\n",
     [](ChangedFile& rows) { rows.edit().setText(rows.row("| a |\n|---|"), Text("| A |\n|---|\n| 1 |")); rows.edit().setText(rows.row("<!-- b -->"), Text("<!-- B -->")); rows.text("c", "C"); },
     "| A |\n|---|\n| 1 |\n\n<!-- B -->\n\n```\nC\n```\n"},
    {"the mark, where rows stand below it", "- a\n  - b\n\n# c\n\nd\n\n> e\n> - f\n",
     [](ChangedFile& rows) { rows.edit().setType(rows.row("a"), RowType::ordered); rows.edit().setType(rows.row("c"), RowType::body); rows.edit().setType(rows.row("e"), RowType::code); },
     "- a {type=ordered}\n  - b\n\n# c {type=body}\n\nd\n\n> e {type=code}\n> - f\n"},
    {"trailers of HTML that blank lines do not end", "<!-- a -->\nb\n\n- <pre>\n  c\n\n  d\n  </pre>\n- i\n\n<!-- e -->\n\nf {g=h}\n",
     [](ChangedFile& rows) { for (const char* row : {"<!-- a -->", "<pre>\nc\n\nd\n</pre>", "<!-- e -->"}) rows.attributes(row, {{"x", "y"}}); },
     "<!-- a -->\n{x=y}\n\nb\n\n- <pre>\n  c\n\n  d\n  </pre>\n  {x=y}\n- i\n\n<!-- e -->\n{x=y}\n\nf {g=h}\n"},
    {"an item that begins with another one", "a\n\n- - b\n  - c\n", [](ChangedFile& rows) { rows.edit().setText(*rows.row("b").parent(), Text("n")); },
     "a\n\n- n\n  - b\n  - c\n"},
    // New rows.
    {"behind a section", "# a\n\nb\n\n# c\n\nd", [](ChangedFile& rows) { rows.create("", "e"); rows.create("", "f"); },
     "# a\n\nb\n\n# c\n\nd\n\ne {depth=0}\n\nf"},
    {"a heading that would take in what follows", "a\n\n## b\n",
     [](ChangedFile& rows) { rows.edit().insert(rows.edit().make({.type = RowType::heading, .text = Text("c")}), rows.row(""), &rows.row("b")); },
     "a\n\n# c {type=heading}\n\n## b\n"},
    {"in lists", "1. a\n2. b\n\nc\n\n* d\n\n* e\n",
     [](ChangedFile& rows) {
       for (const char* before : {"c", "d"}) rows.edit().insert(rows.edit().make({.type = *before == 'c' ? RowType::ordered : RowType::unordered, .text = Text("n")}), rows.row(""), &rows.row(before));
     },
     "1. a\n2. b\n3. n\n\nc\n\n* n\n\n* d\n\n* e\n"},
    {"in tight lists", "para\n\n- PNG\n- JPEG\n  - x\n\n1. one\n\nend\n",
     [](ChangedFile& rows) {
       for (const char* before : {"PNG", "JPEG", "one"}) rows.edit().insert(rows.edit().make({.type = *before == 'o' ? RowType::ordered : RowType::unordered, .text = Text("n")}), rows.row(""), &rows.row(before));
       rows.edit().insert(rows.edit().make({.type = RowType::ordered, .text = Text("m")}), rows.row(""), &rows.row("end"));
     },
     "para\n\n- n\n- PNG\n- n\n- JPEG\n  - x\n\n1. n\n1. one\n1. m\n\nend\n"},
    {"blocks in a tight list", "- a\n- b\n- c\n- d\n",
     [](ChangedFile& rows) {
       for (const auto& [parent, type] : {std::pair("a", RowType::heading), std::pair("b", RowType::code), std::pair("c", RowType::quote)}) rows.edit().insert(rows.edit().make({.type = type, .text = Text("n")}), rows.row(parent), nullptr);
     },
     "- a\n\t# n\n- b\n\t```\n\tn\n\t```\n- c\n\t> n\n- d\n"},
    {"below rows", "a\n\n- b\n\n> c\n> - d\n",
     [](ChangedFile& rows) { rows.create("a", "n"); rows.create("b", "n"); rows.create("c", "n"); },
     "a\n\nn {depth=1}\n\n- b\n\n\tn\n\n> c\n> - d\n>\n> n {type=body}\n"},
    {"in a quote that an empty line follows", "> a\n> - b\n\n", [](ChangedFile& rows) { rows.create("a", "n"); },
     "> a\n> - b\n>\n> n {type=body}\n"},
    {"in an item right behind the mark of a quote", ">* a\n", [](ChangedFile& rows) { rows.create("a", "n"); }, ">* a\n>\n>   n\n"},
    {"in an item that its first block widens", "-   # a\n\n   1. b\n",
     [](ChangedFile& rows) { rows.edit().insert(rows.edit().make({.text = Text("n")}), *rows.row("a").parent(), &rows.row("a")); },
     "- <br>\n\n  n\n\n  # a\n\n1. b\n"},
    {"after code without end", "> ```\n> a\n", [](ChangedFile& rows) { rows.create("", "n"); }, "> ```\n> a\n> ```\n\nn\n"},
    // Rows that go or move.
    {"deleted rows take one separator", "a\n\n- b\n- c\n\n\nd\n", [](ChangedFile& rows) { rows.remove("b"); rows.remove("d"); }, "a\n\n- c\n"},
    {"a moved item with all that is in it", "- a\n  b\n\n  ```\n  c\n\n  d\n  ```\n- e\n  - f\n",
     [](ChangedFile& rows) { rows.move("a b", "f"); },
     "- e\n  - f\n    - a\n      b\n\n      ```\n      c\n\n      d\n      ```\n"},
    {"into a tight list", "# W\n\n- A\n- T\n\n# H\n\n- M\n- B\n", [](ChangedFile& rows) { rows.text("M", "m"); rows.move("T", "H", "m"); },
     "# W\n\n- A\n\n# H\n\n- T\n- m\n- B\n"},
    {"no formula begins with a text", "a\n\nb\n\nc $$\n", [](ChangedFile& rows) { rows.text("a", "$$ d"); }, "\\$$ d\n\nb\n\nc $$\n"},
    {"headings that move get other levels", "# a\n\n## b\n\n# c\n\nd\n", [](ChangedFile& rows) { rows.move("c", "b"); },
     "# a\n\n## b\n\n### c\n\nd\n"},
    {"line ends and byte order mark", "\xEF\xBB\xBF- a\r\n- b", [](ChangedFile& rows) { rows.create("b", "c"); rows.text("a", "A"); },
     "\xEF\xBB\xBF- A\r\n- b\r\n\r\n\tc"},
    {"line ends of several kinds", "a\n\nb\r", [](ChangedFile& rows) { rows.create("", "c"); }, "a\n\nb\n\nc\n"},
    {"the character of a byte order mark", "x\n\n\xEF\xBB\xBFy\nz\n", [](ChangedFile& rows) { rows.text("\xEF\xBB\xBFy z", "\xEF\xBB\xBFy Z"); }, "x\n\n\xEF\xBB\xBFy\nZ\n"},
    {"the character of a byte order mark comes first", "a\n\n\xEF\xBB\xBF- b\n* c\n", [](ChangedFile& rows) { rows.remove("a"); },
     "\xEF\xBB\xBF\xEF\xBB\xBF- b\n* c\n"},
};
// clang-format on

TEST(MarkdownUpdate, ChangesWhatChanged) {
  for (const UpdateCase& row : cases) checkUpdate("markdown", row);
}

}  // namespace
}  // namespace vell::formats

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/formats/support.h"
#include "tests/support/temporary_directory.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

/// One line a row: indentation by depth, then "type|text #id attribute=value".
std::string outlineOf(std::string_view format, std::string_view text) {
  Outline outline;
  readAs(format, text, outline);
  std::string out;
  for (const PlacedRow& placed : placeAll(outline)) {
    out += std::string(placed.depth, '.') + std::string(name(placed.row->type())) + "|";
    for (const char c : placed.row->text().string()) out += c == '\n' ? "¶" : std::string(1, c);
    if (!placed.row->persistentId().empty()) out += " #" + placed.row->persistentId();
    for (const Attribute& entry : placed.row->attributes()) out += " " + entry.key + "=" + entry.value;
    out += "\n";
  }
  return out;
}

struct ReadCase {
  const char* format;
  const char* text;
  const char* rows;
};

const ReadCase readCases[] = {
    // Markdown: marks.
    {"markdown", "a\n# h #x\n- u\n* u\n+ u\n1. o\n2) o\n- [ ] t\n* [X] t\n> q\n\n> [!NOTE] n\n***\n<br>\n",
     "body|a\nheading|h "
     "#x\n.unordered|u\n.unordered|u\n.unordered|u\n.ordered|o\n.ordered|o\n.task|t\n.task|t "
     "done=true\n.quote|q\n.note|n\n.hr|\n.body|\n"},
    {"markdown", "#x\n-x\n1.x\n[ ] x\n####### x\n\\# x\n1\\. x\n\n--\n",
     "body|#x -x 1.x [ ] x ####### x # x 1. x\nbody|--\n"},
    // Paragraphs: wrapped, with hard breaks, lazily continued; what follows the first one in an item or
    // quote.
    {"markdown", "a\n  b\nc  \nd\\\ne {#p}\n", "body|a b c¶d¶e #p\n"},
    {"markdown", "a\n      ---\nb\n---\n> c\n===\n> d\n> \t---\n",
     "heading|a --- b level=2\n.quote|\n..heading|c === d level=2\n"},
    {"markdown", "\xEF\xBB\xBF\xEF\xBB\xBF- a\n", "body|\xEF\xBB\xBF- a\n"},
    {"markdown", "Title\ntoo {#p}\n===\nSub\n---\n# C #\n## D {#q} ##\n",
     "heading|Title too #p\n.heading|Sub\nheading|C\n.heading|D #q\n"},
    {"markdown", "- a\nb\n\n  c\n\n      code\n> q\nr\n>\n> s\n> - t\n>\n>   u\n>\n> v\n",
     "unordered|a b\n.body|c\n.code|code\nquote|q r\nquote|s\n.unordered|t\n..body|u\nquote|v\n"},
    {"markdown", "- - a\n1. ## h\n> # h\n- ```x\n  y\n  ```\n>\n- <br>\n\n  a\n",
     "unordered|\n.unordered|a\nordered|\n.heading|h level=2\nquote|\n.heading|h\nunordered|\n.code|y "
     "language=x\nquote|\nunordered|\n.body|a\n"},
    // What is kept as it stands.
    {"markdown",
     "x\n| a |\n|--|\n| *b* |\n{#p}\n\n<div>\n_c_\n</div>\n\n[d]: e\n[^f]: g\n\n    h\n\n$$\n- i\n\n$$\n",
     "body|x\nbody|| a |¶|--|¶| *b* | #p\nbody|<div>¶_c_¶</div>\nbody|[d]: e¶[^f]: g\ncode|h\nbody|$$¶- "
     "i¶¶$$\n"},
    {"markdown", "[^f]: g\n\n    h\n\ni\n", "body|[^f]: g¶¶    h\nbody|i\n"},
    // Rows that say where they stand.
    {"markdown", "# A\n\na\n\nb {depth=0}\n\nc {depth=1}\n\nd\n\n- e\n\n  f\n\n  g {depth=1 \"depth\"=2}\n",
     "heading|A\n.body|a\nbody|b\n.body|c\nbody|d\nunordered|e\n.body|f\n..body|g depth=2\n"},
    {"markdown", "# A {type=heading}\n\na\n\n# B {type=body}\n\nb\n\n## C {depth=1}\n",
     "heading|A\nbody|a\nbody|B\n.body|b\n.heading|C\n"},
    {"markdown", "a\n\n\tb\n", "body|a\ncode|b\n"},
    {"markdown", "---\nid: 01234567-89ab-cdef-0123-456789abcdef\n---\n\ta\n\n\tb\n\n\t\t- c\n\nd\n",
     "body|a\nbody|b\n.unordered|c\nbody|d\n"},
    // Trailers.
    {"markdown",
     "a {#p type=task color=red}\n\nb {done}\n- {#q}\n\nc{#d}\n\n{x=\"} {\"}\n\ne \\{k=v}\n\nf "
     "{type=zebra}\r\n",
     "task|a #p color=red\nbody|b {done}\nunordered| #q\nbody|c{#d}\nbody| x=} {\nbody|e {k=v}\nbody|f "
     "type=zebra\n"},
    {"markdown", "a {#p}\n\nb {#p}\n", "body|a #p\nbody|b\n"},
    // Nesting by items (a tab reaches the next multiple of four) and by headings.
    {"markdown", "- a\n  - b\n\t- c\n\n      text\n\n - d\n",
     "unordered|a\n.unordered|b\n..unordered|c\n...body|text\nunordered|d\n"},
    {"markdown", "# A\n## B\nx\n### C\n# D\n", "heading|A\n.heading|B\n..body|x\n..heading|C\nheading|D\n"},
    {"markdown", "## A\n#### B\n# C\n", "heading|A level=2\n.heading|B level=4\nheading|C\n"},
    {"markdown", "# A {type=heading}\nx\n- i\n\n\t# in\n\n\ty\n\nz\n",
     "heading|A\nbody|x\nunordered|i\n.heading|in\n..body|y\nbody|z\n"},
    // Code.
    {"markdown", "- a\n  ```c++ {#p k=v}\n  x\n    y\n\n  ```\n~~~\n```\n~~~\n",
     "unordered|a\n.code|x¶  y¶ #p language=c++ k=v\ncode|```\n"},
    {"markdown", "```\nnot closed", "code|not closed\n"},
    // Front matter, and a rule that is none.
    {"markdown", "---\nid: doc\n---\na\n", "body|a\n"},
    {"markdown", "---\na\n\n---\n", "hr|\nbody|a\nhr|\n"},
    {"markdown", "\xEF\xBB\xBF# a", "heading|a\n"},
    // .vell: without a header too.
    {"vell", "# h\n\t[x] t {#p done=no}\n\n\t\t// n\n1. o\n> q\n---\n\\---\n\\\n{k=v}\na {type=note}\n",
     "heading|h\n.task|t #p done=no\n..note|n\nordered|o\nquote|q\nhr|\nbody|---\nbody|\nbody| "
     "k=v\nnote|a\n"},
    // Plain text: tabs that cannot be depth are text.
    {"txt", "a\n\tb\n\t\t\tc\n\n d", "body|a\n.body|b\n..body|\tc\nbody|\nbody| d\n"},
    // OPML from other programs.
    {"opml",
     "<opml><body><outline text='a' url=\"u\"><outline/></outline><outline text='&lt;b'/></body></opml>",
     "body|a url=u\n.body|\nbody|<b\n"},
    {"opml", "<opml><body><outline text='new' vell-text='_old_'/></body></opml>", "body|new\n"},
    // JSON: session answers, unknown members and any order of members are fine.
    {"json",
     R"([{"children":[{"text":"b"}],"id":7,"persistentId":"p","more":[{"rows":[1]}],"text":[{"string":"a"}]}])",
     "body|a #p\n.body|b\n"},
    {"json", R"({"rows":[]})", ""},
};

TEST(Formats, ReadRows) {
  for (const ReadCase& row : readCases) EXPECT_EQ(outlineOf(row.format, row.text), row.rows) << row.text;
}

const ReadCase brokenCases[] = {
    {"vell", "a\n\t\tb\n", "line 2 (byte 2): indented by 2 tabs, but the row before allows at most 1"},
    {"vell", "vell 2\n", "line 1 (byte 0): this file is in a newer form of the format (\"vell 2\")"},
    {"vell", "vell 1\nnonsense\n",
     "line 2 (byte 7): expected \"key: value\" or an empty line to end the header"},
    {"vell", "a {created=today}\n", "line 1 (byte 0): \"today\" is not a time like 2026-01-31T12:00:00Z"},
    {"vell", "a\n```\nb\n", "line 2 (byte 2): this block of code is not closed"},
    {"markdown", "a\n\xC3(\n", "line 2 (byte 2): not valid UTF-8; save the file as UTF-8"},
    {"txt", "\xED\xA0\x80", "line 1 (byte 0): not valid UTF-8; save the file as UTF-8"},
    {"opml", "<opml>\n<body>\n<outline></body></opml>", "line 3 (byte 25): Start-end tags mismatch"},
    {"opml", "<html/>", "line 1 (byte 0): not OPML: there is no <opml> element"},
    {"json", "{\"rows\":[\n{\"type\":\"zebra\"}]}", "line 2 (byte 18): there is no row type \"zebra\""},
    {"json", "\n{\"row\":[]}", "line 2 (byte 1): not an outline: this object has no \"rows\""},
    {"json", "[{\"text\":7}]", "line 1 (byte 9): \"text\" should be an array, not a number"},
    {"json", "[1]", "line 1 (byte 1): expected a row, not a number"},
    {"json", "[", "line 1 (byte 1): expected a value or ']', found the end of the text"},
    {"json", "{\"frontMatter\":{\"a\":{}}}", "line 1 (byte 20): \"a\" should be a string, not an object"},
    {"json", "[{\"text\":[[]]}]", "line 1 (byte 10): expected a run like {\"string\":\"…\"}, not an array"},
    {"opml", "<opml><body><outline vell-attributes='{\"a\":1}'/></body></opml>",
     "line 1 (byte 5): \"a\" should be a string, not a number"},
};

TEST(Formats, RefuseWithPlaceAndFault) {
  for (const ReadCase& row : brokenCases) {
    try {
      outlineOf(row.format, row.text);
      ADD_FAILURE() << "accepted: " << row.text;
    } catch (const FormatError& error) {
      EXPECT_STREQ(error.what(), row.rows);
    }
  }
}

struct ConvertCase {
  const char* from;
  const char* text;
  const char* to;
  const char* written;
};

const ConvertCase convertCases[] = {
    // Headings gather what is below them; what they would gather by mistake says where it stands.
    {"vell", "# A\n\tx\n\t# B\n\t\ty\n# C\n", "markdown", "# A\n\nx\n\n## B\n\ny\n\n# C\n"},
    {"vell", "# A\n\tx\ny\nz\n", "markdown", "# A\n\nx\n\ny {depth=0}\n\nz\n"},
    {"vell", "# A {level=3}\n\t# B\n# C {level=2}\n", "markdown", "### A\n\n#### B\n\n## C\n"},
    {"vell", "# 1\n\t# 2\n\t\t# 3\n\t\t\t# 4\n\t\t\t\t# 5\n\t\t\t\t\t# 6\n\t\t\t\t\t\t# 7\n\t\t\t\t\t\t\t8\n",
     "markdown", "# 1\n\n## 2\n\n### 3\n\n#### 4\n\n##### 5\n\n###### 6\n\n###### 7 {depth=6}\n\n8\n"},
    // Rows below a row that is no item: it becomes one.
    {"vell", "a\n\tb\n\t> c\n\t\td\n---\n\te\n", "markdown",
     "- a {type=body}\n\n\tb\n\n\t- c {type=quote}\n\n\t\td\n\n---\n\ne {depth=1}\n"},
    {"vell", "<div>\n\\| a | b\n", "markdown", "<div>\n\n| a | b\n"},
    // Lists stay tight and count.
    {"vell", "1. a\n\t1. b\n1. c\n- d\n1. e\n> q\n> r\n", "markdown",
     "1. a\n\t1. b\n2. c\n- d\n1. e\n\n> q\n\n> r\n"},
    {"vell", "---\n---\n", "markdown", "***\n\n---\n"},
    {"vell", "\\\na\\&\nb&#10;c\n\\- d\n> \\[!NOTE] e\n", "markdown",
     "<br>\n\na&\n\nb&#10;c\n\n\\- d\n\n> \\[!NOTE] e\n"},
    {"vell", "- [ ] a\n- [x] b\n", "markdown", "- \\[ ] a\n- \\[x] b\n"},
    // Signs of their own for done, language and level only where the attribute comes first.
    {"markdown", "- [x] a\n- [x] b {k=v done=true}\n- [ ] c {done=no}\n", "vell",
     "[x] a\n[x] b {k=v done=true}\n[ ] c {done=no}\n"},
    {"markdown", "~~~c++ {k=v language=d}\n```\n~~~\n", "vell", "```` {k=v language=d}\n```\n````\n"},
    // What the front matter holds, and what only looks like our own keys.
    {"markdown", "---\nid: d\nt:\n  - a\n  - b\n\"id\": x\ne: \"a\\nb\"\nu: http://x\n---\n", "markdown",
     "---\nid: d\nt:\n  - a\n  - b\n\"id\": x\ne: \"a\\nb\"\nu: http://x\n---\n"},
    {"vell", "vell 1\nid: d\ncreated: 2026-01-02T03:04:05Z\nt: T\n\na {created=2026-02-02T00:00:00Z}\n",
     "json",
     R"({"id":"d","created":"2026-01-02T03:04:05Z","frontMatter":{"t":"T"},"rows":[{"type":"body",)"
     R"("text":[{"string":"a"}],"created":"2026-02-02T00:00:00Z","modified":"2026-02-02T00:00:00Z"}]})"},
    {"vell", "vell 1\ncreated: 2026-01-02T03:04:05Z\nodd key: <&>\n\n[x] **a** \"b\" {#p}\n\tb {text=t}\n",
     "opml",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opml version=\"2.0\">\n  <head>\n"
     "    <vell-created>2026-01-02T03:04:05Z</vell-created>\n"
     "    <vell-frontMatter>{&quot;odd key&quot;:&quot;&lt;&amp;&gt;&quot;}</vell-frontMatter>\n  </head>\n  "
     "<body>\n"
     "\t\t<outline text=\"a &quot;b&quot;\" vell-type=\"task\" vell-id=\"p\" vell-text=\"**a** "
     "&quot;b&quot;\" "
     "done=\"true\">\n\t\t\t<outline text=\"b\" vell-attributes=\"{&quot;text&quot;:&quot;t&quot;}\"/>\n"
     "\t\t</outline>\n  </body>\n</opml>\n"},
};

TEST(Formats, Convert) {
  for (const ConvertCase& row : convertCases) {
    Outline outline;
    readAs(row.from, row.text, outline);
    const bool rowsOnly = std::string_view(row.to) == "vell";  // its header would tell the time of reading
    EXPECT_EQ(writeAll(row.to, outline, rowsOnly), row.written) << row.text;
  }
}

/// The examples in docs/formats.md are what the formats are: each whole file in it is written as it stands.
TEST(Formats, DocumentedExamplesStandAsTheyAreWritten) {
  const std::string guide = tests::contentOf(VELL_SAMPLES "/../docs/formats.md");
  text::Lines lines(guide);
  int checked = 0;
  while (lines.next()) {
    if (!lines.line().starts_with("```")) continue;
    const bool isMarkdown = lines.line() == "```markdown";
    std::string example;
    while (lines.next() && lines.line() != "```") example.append(lines.line()).append("\n");
    const char* format = isMarkdown ? "markdown" : example.starts_with("vell 1\n") ? "vell" : nullptr;
    if (!format) continue;
    Outline outline;
    readAs(format, example, outline);
    EXPECT_EQ(writeAll(format, outline), example);
    ++checked;
  }
  EXPECT_EQ(checked, 2);
}

TEST(Formats, SamplesStandAsTheyAreWritten) {
  std::size_t count = 0;
  for (const auto& file : std::filesystem::directory_iterator(VELL_SAMPLES)) {
    const Format* format = formatForFile(file.path().string());
    ASSERT_TRUE(format) << file.path();
    const std::string text = tests::contentOf(file.path().string());
    Outline outline;
    readAs(format->name, text, outline);
    EXPECT_EQ(writeAll(format->name, outline), text) << file.path();
    ++count;
  }
  EXPECT_GE(count, 4u);
}

class Writing : public testing::Test {
 protected:
  Writing() {
    readAs("markdown", "---\nid: d\ntitle: T\n---\n# A {#a}\n- b\n\t- **c** d\n\t- e {k=v}\n# F\n", outline);
  }
  std::string write(const char* format, std::initializer_list<SessionId> ids, Shape shape, bool rowsOnly) {
    std::vector<const Row*> rows;
    for (const SessionId id : ids) rows.push_back(outline.find(id));
    std::string out;
    formatNamed(format)->write(outline, placeSome(outline, rows, shape), rowsOnly, out);
    return out;
  }
  Outline outline;
};

TEST_F(Writing, SessionAndJsonShapes) {
  EXPECT_EQ(write("session", {4}, Shape::tree, false),
            R"({"persistentId":"d","created":"2026-09-21T14:13:20Z","frontMatter":{"title":"T"},"rows":[)"
            R"({"id":4,"type":"unordered","text":[{"string":"c","attrs":{"strong":""}},{"string":" d"}],)"
            R"("created":"2026-09-21T14:13:20Z","modified":"2026-09-21T14:13:20Z"}]})");
  EXPECT_EQ(write("json", {2}, Shape::tree, true),
            R"([{"id":"a","type":"heading","text":[{"string":"A"}],"created":"2026-09-21T14:13:20Z",)"
            R"("modified":"2026-09-21T14:13:20Z"}])");
}

TEST_F(Writing, ChosenRowsHangBelowTheNearestChosenAncestor) {
  EXPECT_EQ(write("txt", {5, 2, 6, 5}, Shape::tree, true), "A\n\te\nF\n");
  EXPECT_EQ(write("txt", {4, 3, 2}, Shape::flat, true), "A\nb\nc d\n");
  EXPECT_EQ(write("markdown", {3, 5}, Shape::tree, true), "- b\n\t- e {k=v}\n");
  EXPECT_EQ(write("markdown", {6}, Shape::tree, false), "---\nid: d\ntitle: T\n---\n\n# F\n");
  EXPECT_EQ(write("session", {}, Shape::tree, true), "[]");
}

TEST(Formats, AreFoundByNameAndFile) {
  EXPECT_EQ(formatNamed("zebra"), nullptr);
  const std::pair<const char*, const char*> files[] = {
      {"a/b.MD", "markdown"}, {"x.markdown", "markdown"}, {"x.tar.Vell", "vell"}, {"x.opml", "opml"}};
  for (const auto& [path, name] : files) EXPECT_EQ(formatForFile(path)->name, name);
  for (const char* path : {"a.md/b", "vell", "x.html", ""}) EXPECT_EQ(formatForFile(path), nullptr) << path;
}

}  // namespace
}  // namespace vell::formats

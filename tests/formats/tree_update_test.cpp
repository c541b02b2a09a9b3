#include "tests/formats/update_case.h"

namespace vell::formats {
namespace {

// clang-format off
const UpdateCase jsonCases[] = {
    // A changed row keeps what else its object says, as it says it.
    {"members, numbers and escapes", R"({ "n" : 1.50, "rows" : [ {"a":"\u0061\/", "n": 1e2,"text":"a" ,"x":{"text":"a"},"a":2} ], "rows2":[] })",
     [](ChangedFile& rows) { rows.text("a", "b"); },
     R"({ "n" : 1.50, "rows" : [ {"a":"\u0061\/", "n": 1e2,"text":"b" ,"x":{"text":"a"},"a":2} ], "rows2":[] })"},
    {"the last of repeated members counts", R"({"rows":[{"text":"no"}],"rows":[{"children":[{"text":"no"}],"text":"a","text":"b","children":[{"text":"c"}]}]})",
     [](ChangedFile& rows) { rows.text("b", "B"); rows.text("c", "C"); },
     R"({"rows":[{"text":"no"}],"rows":[{"children":[{"text":"no"}],"text":"a","text":"B","children":[{"text":"C"}]}]})"},
    {"strings stay strings while they can", R"([{"text": "a"}, {"text": [{"string": "b", "x": 1}]}, {"text": "c"}, {}])",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "B"); rows.text("c", "*c* d"); },
     R"([{"text": "A"}, {"text": [{"string": "B"}]}, {"text": [{"string": "c", "attrs": {"em": ""}}, {"string": " d"}]}, {}])"},
    {"attributes", R"([{"text":"a","attributes":{"x": "\u0031", "y":"2", "z":"3"}},{"attributes":{"k":"v"},"text":"b"},{"text":"c"}])",
     [](ChangedFile& rows) {
       rows.attributes("a", {{"x", "1"}, {"z", "4"}, {"n", "5"}});
       rows.attributes("b", {});
       rows.attributes("c", {{"q", "\"'"}});
     },
     R"([{"text":"a","attributes":{"x": "\u0031", "z":"4", "n":"5"}},{"text":"b"},{"text":"c","attributes":{"q":"\"'"}}])"},
    {"attributes in another order", R"([{"text":"a","attributes":{"x":"1", "y":"2"}}])",
     [](ChangedFile& rows) { rows.attributes("a", {{"y", "2"}, {"n", "3"}, {"x", "1"}}); },
     R"([{"text":"a","attributes":{"y":"2", "n":"3", "x":"1"}}])"},
    {"types and ids", R"([{"id":7,"text":"a"},{"text":"b","id":"i"},{"id":8,"persistentId":"p","text":"c","type":"task"}])",
     [](ChangedFile& rows) {
       rows.edit().setPersistentId(rows.row("a"), "i");
       rows.edit().setPersistentId(rows.row("c"), "q");
       rows.edit().setType(rows.row("b"), RowType::note);
       rows.edit().setType(rows.row("c"), RowType::body);
     },
     R"([{"id":7,"text":"a","persistentId":"i"},{"text":"b","type":"note"},{"id":8,"persistentId":"q","text":"c","type":"body"}])"},
    {"members on both sides of the children", R"([{"type":"note", "children" : [ {"text":"c"} ] , "text":"a", "modified":"2026-01-01T00:00:00Z" },{"text":"b","children":[]}])",
     [](ChangedFile& rows) { rows.attributes("a", {{"k", "v"}}); rows.text("a", "A"); rows.attributes("b", {{"k", "v"}}); },
     R"([{"type":"note", "children" : [ {"text":"c"} ] , "text":"A", "modified":"2026-09-21T14:13:25Z", "attributes":{"k":"v"} },{"text":"b","attributes":{"k":"v"},"children":[]}])"},
    // New rows stand as those beside them.
    {"compact", R"({"rows":[{"text":"a"},{"text":"b"}]})",
     [](ChangedFile& rows) { rows.create("", "0", "a"); rows.create("", "1", "b"); rows.create("", "2"); rows.create("a", "3"); rows.create("3", "4"); },
     R"({"rows":[{"text":"0"},{"text":"a","children":[{"text":"3","children":[{"text":"4"}]}]},{"text":"1"},{"text":"b"},{"text":"2"}]})"},
    {"on one line with blanks", R"([{"text": "a"}, {"text": "b"}])",
     [](ChangedFile& rows) { rows.create("", "0", "a"); rows.create("", "1", "b"); rows.create("", "2"); rows.create("a", "3"); },
     R"([{"text": "0"}, {"text": "a", "children": [{"text": "3"}]}, {"text": "1"}, {"text": "b"}, {"text": "2"}])"},
    {"on lines, with a byte order mark", "\xEF\xBB\xBF{\r\n  \"rows\": [\r\n    {\r\n      \"text\": [\r\n        {\r\n          \"string\": \"a\"\r\n        }\r\n      ]\r\n    }\r\n  ]\r\n}\r\n",
     [](ChangedFile& rows) { rows.create("a", "b"); rows.create("", "c"); rows.attributes("a", {{"k", "v"}}); },
     "\xEF\xBB\xBF{\r\n  \"rows\": [\r\n    {\r\n      \"text\": [\r\n        {\r\n          \"string\": \"a\"\r\n        }\r\n      ],\r\n      \"attributes\": {\r\n        \"k\": \"v\"\r\n      },\r\n      \"children\": [\r\n"
     "        {\r\n          \"text\": [\r\n            {\r\n              \"string\": \"b\"\r\n            }\r\n          ]\r\n        }\r\n      ]\r\n    },\r\n"
     "    {\r\n      \"text\": [\r\n        {\r\n          \"string\": \"c\"\r\n        }\r\n      ]\r\n    }\r\n  ]\r\n}\r\n"},
    {"a line a row", "[\n\t{\"text\": \"a\", \"children\": [\n\t\t{\"text\": \"b\"}\n\t]},\n\n\t{\"text\": \"c\"}\n]\n",
     [](ChangedFile& rows) { rows.create("c", "d"); rows.create("a", "e"); rows.create("", "f", "c"); },
     "[\n\t{\"text\": \"a\", \"children\": [\n\t\t{\"text\": \"b\"},\n\t\t{\"text\": \"e\"}\n\t]},\n\t{\"text\": \"f\"},\n\n\t{\"text\": \"c\", \"children\": [\n\t\t{\"text\": \"d\"}\n\t]}\n]\n"},
    {"commas before the rows", "{\"rows\":\n  [ {\"text\":\"a\"}\n  , {\"text\":\"b\"}\n  , {\"text\":\"c\"}\n  ]}",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.remove("b"); },
     "{\"rows\":\n  [ {\"text\":\"A\"}\n  , {\"text\":\"c\"}\n  ]}"},
    {"the first row", "{\n  \"created\" : \"2026-01-01T00:00:00Z\",\n  \"rows\" : []\n}",
     [](ChangedFile& rows) { rows.create("", "a"); },
     "{\n  \"created\" : \"2026-01-01T00:00:00Z\",\n  \"rows\" : [\n    {\n      \"type\" : \"body\",\n      \"text\" : [{\"string\" : \"a\"}],\n"
     "      \"created\" : \"2026-09-21T14:13:25Z\",\n      \"modified\" : \"2026-09-21T14:13:25Z\"\n    }\n  ]\n}"},
    {"the first row of nothing", "[]\n", [](ChangedFile& rows) { rows.create("", "a"); }, "[{\"text\":\"a\"}]\n"},
    {"the first member", "[ { } ]", [](ChangedFile& rows) { rows.edit().setText(*rows.row("").firstChild(), Text("a")); }, "[ {\"text\":\"a\"} ]"},
    {"a file made here", R"({"created":"2026-01-01T00:00:00Z","rows":[{"type":"body","text":[{"string":"a"}],"created":"2026-01-01T00:00:00Z","modified":"2026-01-01T00:00:00Z"},{"text":"b"}]})",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "B"); rows.create("", "c", "B"); },
     R"({"created":"2026-01-01T00:00:00Z","rows":[{"type":"body","text":[{"string":"A"}],"created":"2026-01-01T00:00:00Z","modified":"2026-09-21T14:13:25Z"},)"
     R"({"type":"body","text":[{"string":"c"}],"created":"2026-09-21T14:13:25Z","modified":"2026-09-21T14:13:25Z"},{"text":"B","modified":"2026-09-21T14:13:25Z"}]})"},
    // Rows that go take one comma with them.
    {"deleted rows", "[{\"text\":\"a\"}, {\"text\":\"b\"},\n{\"text\":\"c\", \"children\": [ {\"text\":\"d\"} ]}]",
     [](ChangedFile& rows) { rows.remove("a"); rows.remove("d"); },
     "[{\"text\":\"b\"},\n{\"text\":\"c\", \"children\": [ ]}]"},
    {"the last row deleted", "[\n  {\"text\":\"a\"},\n  {\"text\":\"b\"}\n]", [](ChangedFile& rows) { rows.remove("b"); }, "[\n  {\"text\":\"a\"}\n]"},
    {"a subtree that moves", "[\n  {\n    \"text\": \"a\"\n  },\n  {\n    \"text\": \"b\",\n    \"children\": [\n      { \"x\": [\n        1 ], \"text\": \"c\" }\n    ]\n  }\n]",
     [](ChangedFile& rows) { rows.move("b", "a"); rows.text("c", "C"); },
     "[\n  {\n    \"text\": \"a\",\n    \"children\": [\n      {\n        \"text\": \"b\",\n        \"children\": [\n          { \"x\": [\n            1 ], \"text\": \"C\" }\n        ]\n      }\n    ]\n  }\n]"},
};
// clang-format on

TEST(JsonUpdate, ChangesWhatChanged) {
  for (const UpdateCase& row : jsonCases) checkUpdate("json", row);
}

// clang-format off
const UpdateCase opmlCases[] = {
    // A changed row keeps what else its tag says, as it says it.
    {"quotes and blanks", "<opml><body><outline  type='rss' text = 'a'\n\tx:u=\"b&#99;\"  /></body></opml>",
     [](ChangedFile& rows) { rows.text("a", "it's \"b\" & <c>"); },
     "<opml><body><outline  type='rss' text = 'it&apos;s \"b\" &amp; &lt;c&gt;'\n\tx:u=\"b&#99;\"  /></body></opml>"},
    {"title stands in", "<opml><body><outline title='a' u='1'/></body></opml>",
     [](ChangedFile& rows) { rows.text("a", "b"); },
     "<opml><body><outline title='b' u='1'/></body></opml>"},
    {"title becomes an attribute", "<opml><body><outline title='a'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("a", {{"title", "t"}}); },
     "<opml><body><outline title='t' text='a'/></body></opml>"},
    {"repeated attributes", "<opml><body><outline text='no' a='no' text='t' a='1' b='2'/></body></opml>",
     [](ChangedFile& rows) { rows.text("t", "u"); rows.attributes("u", {{"a", "3"}, {"b", "2"}}); },
     "<opml><body><outline text='no' a='3' text='u' b='2'/></body></opml>"},
    {"attributes that only look like ours", "<opml><body><outline text='t' vell-x='1' vell-attributes2='2' vell-y='3'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("t", {{"vell-attributes2", "a"}, {"vell-y", "3"}}); },
     "<opml><body><outline text='t' vell-attributes2='a' vell-y='3'/></body></opml>"},
    {"styles come and go", "<opml><body><outline text=\"a b\" vell-text='_a_ b'/><outline text=\"c\"/><outline text=\"d\" vell-text=\"_d_\"/></body></opml>",
     [](ChangedFile& rows) { rows.text("a b", "_a_ b e"); rows.text("c", "**c**"); rows.text("d", "d"); },
     "<opml><body><outline text=\"a b e\" vell-text='_a_ b e'/><outline text=\"c\" vell-text=\"**c**\"/><outline text=\"d\"/></body></opml>"},
    {"one attribute changes, one goes, one comes", "<opml><body><outline a='1' text='t' b=\"2\" c='3'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("t", {{"a", "1"}, {"c", "x"}, {"d", "4"}}); },
     "<opml><body><outline a='1' text='t' c='x' d='4'/></body></opml>"},
    {"attributes in another order", "<opml><body><outline text='t' a='1' b='2'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("t", {{"b", "2"}, {"n", "3"}, {"a", "1"}}); },
     "<opml><body><outline text='t' b='2' n='3' a='1'/></body></opml>"},
    {"attributes that XML cannot name", "<opml><body><outline text='t' vell-attributes='{ \"a b\": \"1\" }' c='2'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("t", {{"a b", "1"}, {"c", "2"}, {"text", "3"}, {"\xC3\xA9", "4"}}); },
     "<opml><body><outline text='t' vell-attributes='{ \"a b\": \"1\" }' c='2' vell-attributes-2='{\"text\":\"3\"}' \xC3\xA9='4'/></body></opml>"},
    {"the first of two such", "<opml><body><outline text='t' vell-attributes='{\"1\":\"1\"}' c='2' vell-attributes-2='{\"2\":\"2\",\"3\":\"3\"}'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("t", {{"c", "2"}, {"3", "x"}, {"d", "4"}, {"5", "5"}}); },
     "<opml><body><outline text='t' c='2' vell-attributes-2='{\"3\":\"x\"}' d='4' vell-attributes-3='{\"5\":\"5\"}'/></body></opml>"},
    {"type and id", "<opml><body><outline vell-type='task' text='t'/><outline text='u' vell-id='i'/></body></opml>",
     [](ChangedFile& rows) { rows.edit().setType(rows.row("t"), RowType::body); rows.edit().setPersistentId(rows.row("t"), "i"); },
     "<opml><body><outline text='t' vell-id='i'/><outline text='u'/></body></opml>"},
    {"entities of its own", "<!DOCTYPE opml [<!ENTITY co \"Company\">]>\n<opml><body><outline text=\"&co; &amp; a\" b=\"&co;\"/></body></opml>",
     [](ChangedFile& rows) { rows.text("&co; & a", "&co; & &b;"); },
     "<!DOCTYPE opml [<!ENTITY co \"Company\">]>\n<opml><body><outline text=\"&co; &amp; &amp;b;\" b=\"&co;\"/></body></opml>"},
    {"texts that look like references", "<opml><body><outline text='&lt; &amp;lt; &amp;co;'/></body></opml>",
     [](ChangedFile& rows) { rows.edit().setText(rows.row("< &lt; &co;"), Text("< &lt; &co; &amp;")); },
     "<opml><body><outline text='&lt; &amp;lt; &amp;co; &amp;amp;'/></body></opml>"},
    {"references to no character", "<opml><body><outline text='&#xD800;' a='&#999999999;'/></body></opml>",
     [](ChangedFile& rows) { rows.attributes("\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD", {{"a", "b"}}); },
     "<opml><body><outline text='&#xD800;' a='b'/></body></opml>"},
    {"another declared encoding", "<?xml version='1.0' encoding='ISO-8859-1'?><opml><body><outline text='a'/></body></opml>",
     [](ChangedFile& rows) { rows.text("a", "\xC3\xA9"); rows.create("", "\xF0\x9F\x98\x80"); },
     "<?xml version='1.0' encoding='ISO-8859-1'?><opml><body><outline text='&#233;'/><outline text=\"&#128512;\"/></body></opml>"},
    // New rows stand as those beside them.
    {"on lines, with a byte order mark", "\xEF\xBB\xBF<opml>\r\n<body>\r\n  <outline text='a'/>\r\n</body></opml>",
     [](ChangedFile& rows) { rows.create("", "0", "a"); rows.create("a", "b"); rows.create("b", "c"); rows.create("", "d"); },
     "\xEF\xBB\xBF<opml>\r\n<body>\r\n  <outline text=\"0\"/>\r\n  <outline text='a'>\r\n    <outline text=\"b\">\r\n      <outline text=\"c\"/>\r\n    </outline>\r\n  </outline>\r\n  <outline text=\"d\"/>\r\n</body></opml>"},
    {"the first row", "<opml>\n  <body />\n</opml>\n",
     [](ChangedFile& rows) { rows.create("", "a"); },
     "<opml>\n  <body>\n    <outline text=\"a\"/>\n  </body>\n</opml>\n"},
    {"between end tags", "<opml><body>\n<outline text='a'></outline> <!-- of a -->\n\n<outline text='b'>text</outline>\n</body></opml>",
     [](ChangedFile& rows) { rows.create("a", "c"); rows.create("", "d", "b"); rows.create("b", "e"); },
     "<opml><body>\n<outline text='a'>\n  <outline text=\"c\"/>\n</outline> <!-- of a -->\n<outline text=\"d\"/>\n\n<outline text='b'>\n  <outline text=\"e\"/>text\n</outline>\n</body></opml>"},
    // What stands before a row goes with it; comments outlive the rows that are deleted.
    {"deleted rows", "<opml><body>\n\t<!-- 1 -->\n\t<outline text='a'/> <!-- of a -->\n\t<?p?>\n\t<outline text='b'><outline text='c'/></outline>\n\n\t<outline text='d'/>\n</body></opml>",
     [](ChangedFile& rows) { rows.remove("a"); rows.remove("b"); },
     "<opml><body>\n\t<!-- 1 -->\n\t<?p?>\n\n\t<outline text='d'/>\n</body></opml>"},
    {"all rows deleted", "<opml><body>\n\t<outline text='a'>\n\t\t<outline text='b'/>\n\t</outline>\n</body></opml>",
     [](ChangedFile& rows) { rows.remove("b"); },
     "<opml><body>\n\t<outline text='a'>\n\t</outline>\n</body></opml>"},
    {"a subtree that moves", "<opml><body>\n<outline text='a'>\n\t<!-- b -->\n\t<outline\n\t\ttext='b'>\n\t\t<outline text='c'/>\n\t</outline>\n</outline>\n<outline text='d'/>\n</body></opml>",
     [](ChangedFile& rows) { rows.move("b", ""); },
     "<opml><body>\n<outline text='a'>\n</outline>\n<outline text='d'/>\n\t<!-- b -->\n<outline\n\t\ttext='b'>\n\t<outline text='c'/>\n</outline>\n</body></opml>"},
    {"the last becomes the first", "<opml><body>\n<outline text='a'/>\n\n<outline text='b'/>\n<outline text='c'/>\n</body></opml>",
     [](ChangedFile& rows) { rows.move("c", "", "a"); },
     "<opml><body>\n<outline text='c'/>\n<outline text='a'/>\n\n<outline text='b'/>\n</body></opml>"},
    {"what no row is", "<opml><body><x:outline text='no'/>\n<group><outline text='no'/></group>\n<outline text='a'/>\n</body><body><outline text='no'/></body></opml>",
     [](ChangedFile& rows) { rows.text("a", "b"); rows.create("", "c"); },
     "<opml><body><x:outline text='no'/>\n<group><outline text='no'/></group>\n<outline text='b'/>\n<outline text=\"c\"/>\n</body><body><outline text='no'/></body></opml>"},
    // Times stand in files that were made here, and in rows that tell them.
    {"notes of others", "<opml><head><vell-id>x</vell-id></head><body>\n<outline text='a'/>\n<outline text='b' vell-modified='2026-01-01T00:00:00Z'/>\n</body></opml>",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.text("b", "B"); rows.create("", "c"); rows.outline().setPersistentId("x"); },
     "<opml><head><vell-id>x</vell-id></head><body>\n<outline text='A'/>\n<outline text='B' vell-modified='2026-09-21T14:13:25Z'/>\n<outline text=\"c\"/>\n</body></opml>"},
    {"a file made here", "<opml><head><vell-created>2026-01-01T00:00:00Z</vell-created></head><body>\n<outline text='a'/>\n</body></opml>",
     [](ChangedFile& rows) { rows.text("a", "A"); rows.create("", "c"); },
     "<opml><head><vell-created>2026-01-01T00:00:00Z</vell-created></head><body>\n<outline text='A' vell-modified='2026-09-21T14:13:25Z'/>\n<outline text=\"c\" vell-created=\"2026-09-21T14:13:25Z\"/>\n</body></opml>"},
};
// clang-format on

TEST(OpmlUpdate, ChangesWhatChanged) {
  for (const UpdateCase& row : opmlCases) checkUpdate("opml", row);
}

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

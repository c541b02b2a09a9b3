#include "tests/formats/update_case.h"

namespace vell::formats {
namespace {

// clang-format off
const UpdateCase updateCases[] = {
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
  for (const UpdateCase& row : updateCases) checkUpdate("json", row);
}

}  // namespace
}  // namespace vell::formats

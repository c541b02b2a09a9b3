#include <gtest/gtest.h>

#include "mcp/argument_validator.h"
#include "mcp/parameters.h"
#include "tests/mcp/support.h"

namespace vell::mcp {
namespace {

struct Count {
  static Value schema() { return schema::anyOf({schema::string(), schema::integer()}); }
  static std::string decode(const Value& value) {
    return value.string() ? *value.string() : std::to_string(*value.integer());
  }
};

struct Shape {
  static Value schema() { return schema::oneOf({"tree", "flat"}); }
  static std::string decode(const Value& value) { return *value.string(); }
};

struct Record {
  std::vector<std::string> rows;
  std::optional<std::string> count;
  std::string shape = "tree";
  bool deep = false;
  std::optional<std::map<std::string, std::optional<std::string>>> attributes;
};

Parameters<Record> parameters() {
  return Parameters<Record>()
      .required("rows", &Record::rows, "R")
      .optional<Count>("count", &Record::count, "C")
      .optional<Shape>("shape", &Record::shape, "S")
      .optional("deep", &Record::deep, "D")
      .optional(
          "attributes", [](Record & record) -> auto& { return record.attributes; }, "A");
}

TEST(Arguments, SchemaComesFromTheDeclaration) {
  EXPECT_EQ(parameters().schema(), decode(R"({"additionalProperties":false,"properties":{
    "attributes":{"additionalProperties":{"anyOf":[{"type":"string"},{"type":"null"}]},"description":"A","type":"object"},
    "count":{"anyOf":[{"type":"string"},{"type":"integer"}],"description":"C"},
    "deep":{"description":"D","type":"boolean"},
    "rows":{"description":"R","items":{"type":"string"},"type":"array"},
    "shape":{"description":"S","enum":["tree","flat"],"type":"string"}},
    "required":["rows"],"type":"object"})"));
}

TEST(Arguments, AreDecodedIntoTheRecord) {
  const Value arguments = decode(R"({"rows":["a","b"],"count":3,"attributes":{"k":"v","gone":null}})");
  EXPECT_EQ(ArgumentValidator(parameters().schema()).faults(arguments), "");
  const Record record = parameters().decode(*arguments.object());
  EXPECT_EQ(record.rows, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(record.count, "3");
  EXPECT_EQ(record.shape, "tree");
  EXPECT_EQ(record.attributes->at("k"), "v");
  EXPECT_EQ(record.attributes->at("gone"), std::nullopt);
}

std::string tenFaults(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i + 1);
    text += (i == 0 ? "" : "\n") + ("rows[" + std::to_string(i)) + "]: expected a string, got the number " +
            number + " (write \"" + number + "\")";
  }
  return text;
}

TEST(Arguments, FaultsSayHowToRepairTheCall) {
  const std::pair<const char*, std::string> rows[] = {
      {R"({})", "Missing required parameter 'rows'"},
      {R"({"rows":["a",12]})", R"(rows[1]: expected a string, got the number 12 (write "12"))"},
      {R"({"rows":["a",true,null]})",
       "rows[1]: expected a string, got true\nrows[2]: expected a string, got null"},
      {R"({"rows":["a",1.5]})", "rows[1]: expected a string, got the number 1.5"},
      {R"({"rows":true})", "rows: expected an array of strings, got true"},
      {R"({"rows":1.5})", "rows: expected an array of strings, got the number 1.5"},
      {R"({"rows":"[1]"})", R"(rows: expected an array of strings, got the string "[1]")"},
      {R"({"rows":[1,2,3,4,5,6,7,8,9,10]})", tenFaults(10)},
      {R"({"rows":[1,2,3,4,5,6,7,8,9,10,11,12]})", tenFaults(10) + "\nand 2 more"},
      {R"({"rows":"a"})", R"(rows: expected an array of strings, got the string "a" (write ["a"]))"},
      {R"({"rows":7})", R"(rows: expected an array of strings, got the number 7 (write ["7"]))"},
      {R"({"rows":"[\"a\"]"})",
       "rows: expected an array of strings, got the string \"[\\\"a\\\"]\": a list written as "
       "a JSON string (pass the array itself)"},
      {R"({"rows":[],"count":[]})", "count: expected a string or an integer, got an array"},
      {R"({"rows":[],"count":1.5})", "count: expected a string or an integer, got the number 1.5"},
      {R"({"rows":[],"count":true})", "count: expected a string or an integer, got true"},
      {R"({"rows":[],"count":1.0})", ""},
      {R"({"rows":[],"count":1e300})", "count: expected a string or an integer, got the number 1e+300"},
      {R"({"rows":[],"shape":"Flatt"})",
       R"(shape: expected 'tree' or 'flat', got the string "Flatt"; did you mean 'flat'?)"},
      {R"({"rows":[],"shape":3})", "shape: expected 'tree' or 'flat', got the number 3"},
      {R"({"rows":[],"deep":"true"})", R"(deep: expected a boolean, got the string "true" (write true))"},
      {R"({"rows":[],"attributes":{"n":1}})",
       R"(attributes.n: expected a string or null, got the number 1 (write "1"))"},
      {R"({"rows":[],"attributes":{"n":true}})",
       R"(attributes.n: expected a string or null, got true (write "true"))"},
      {R"({"rows":[],"attributes":"{\"n\":1}"})",
       R"(attributes: expected an object, got the string "{\"n\":1}")"},
      {R"({"rows":[],"attributes":"{}"})",
       R"(attributes: expected an object, got the string "{}": an object written as a JSON string (pass the object itself))"},
      {R"({"row":["a"],"zzz":1})",
       "Missing required parameter 'rows'\n"
       "row: unknown parameter (accepted: attributes, count, deep, rows and shape); did you mean 'rows'?\n"
       "zzz: unknown parameter (accepted: attributes, count, deep, rows and shape)"},
  };
  ArgumentValidator validator(parameters().schema());
  for (const auto& [arguments, faults] : rows)
    EXPECT_EQ(validator.faults(decode(arguments)), faults) << arguments;
}

TEST(Arguments, OfDeclaredToolsWithoutParameters) {
  ArgumentValidator validator(Parameters<Record>().schema());
  EXPECT_EQ(validator.faults(Value::Object{}), "");
  EXPECT_EQ(validator.faults(Value::Object{{"x", 1}}), "x: unknown parameter (accepted: none)");
}

TEST(Arguments, OfSchemasThatOthersWrote) {
  struct Row {
    const char* schema;
    const char* arguments;
    const char* faults;
  };
  const Row rows[] = {
      {R"({"additionalProperties":false})", R"({"x":1})", "x: unknown parameter (accepted: none)"},
      {R"({"properties":{"x":{"enum":[1,null,"a"]}}})", R"({"x":2})",
       "x: expected 1, null or 'a', got the number 2"},
      {R"({"properties":{"x":{"enum":[1,null,"a"]}}})", R"({"x":null})", ""},
      {R"({"maxProperties":0})", R"({"x":2})", "The arguments do not fit the input schema."},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ArgumentValidator(decode(row.schema)).faults(decode(row.arguments)), row.faults) << row.schema;
  }
}

}  // namespace
}  // namespace vell::mcp

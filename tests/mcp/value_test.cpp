#include <gmock/gmock.h>

#include <cmath>
#include <unordered_set>

#include "mcp/message.h"
#include "mcp/tool.h"
#include "mcp/tool_registry.h"
#include "mcp/uri_template.h"
#include "tests/mcp/support.h"

namespace vell::mcp {
namespace {

TEST(Value, DecodesEveryKindAndWritesItBack) {
  const std::pair<const char*, Value> rows[] = {
      {"1", 1},
      {"1.5", 1.5},
      {"1000.0", 1e3},
      {"9223372036854775807", std::int64_t{INT64_MAX}},
      {"true", true},
      {"null", nullptr},
      {R"("data:text/plain;base64,AAAA")", "data:text/plain;base64,AAAA"},
      {R"({"a":[],"b":{},"c":[1,"x"]})",
       Value::Object{{"a", Value::Array{}}, {"b", Value::Object{}}, {"c", Value::Array{1, "x"}}}},
      {R"("\"\\\n\u0001é😀")", "\"\\\n\x01é😀"},
  };
  std::unordered_set<Value> distinct;
  for (const auto& [text, value] : rows) {
    EXPECT_EQ(decode(text), value) << text;
    EXPECT_EQ(encode(value), text);
    distinct.insert(value);
  }
  EXPECT_EQ(distinct.size(), std::size(rows));
  for (const char* huge : {"18446744073709551615", "123456789012345678901234567890"}) {
    EXPECT_EQ(decode(huge).kind(), Value::Kind::number);
  }
  EXPECT_EQ(decode(R"({"a":1,"a":2})"), (Value::Object{{"a", 2}}));
}

TEST(Value, WritesWhatOnlyProgramsMake) {
  EXPECT_EQ(encode(Data{{}, "hi"}), R"("data:text/plain;base64,aGk=")");
  EXPECT_EQ(encode(Data{"image/png", "hit"}), R"("data:image/png;base64,aGl0")");
  EXPECT_EQ(encode(NAN), "null");
}

TEST(MCPError, HasItsCodeAndTexts) {
  struct Row {
    MCPError error;
    int code;
    const char* message;
  };
  const Row rows[] = {
      {MCPError::parseError(), -32700, "Parse error: Invalid JSON"},
      {MCPError::parseError("x"), -32700, "Parse error: Invalid JSON: x"},
      {MCPError::methodNotFound(), -32601, "Method not found"},
      {MCPError::resourceNotFound("u"), -32002, "Resource not found: u"},
      {MCPError::urlElicitationRequired({}, "go"), -32042, "go"},
      {MCPError::serverError(-32099, "x"), -32099, "Server error: x"},
      {MCPError::transportError(std::runtime_error("x")), -32003, "Transport error: x"},
      {MCPError::requestTimeout(1.5), -32001, "Request timed out after 1.5 seconds"},
      {MCPError::requestTimeout(1.5, "x"), -32001, "Request timeout: x"},
      {MCPError::requestCancelled(), -32004, "Request cancelled"},
      {MCPError::connectionClosed(), -32000, "Connection closed"},
      {MCPError::sessionExpired(), -32005, "Session expired"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.error.code(), row.code);
    EXPECT_EQ(row.error.message(), row.message);
    const bool carriesReason = row.error.kind() != MCPError::Kind::transportError;
    EXPECT_EQ(row.error.failureReason().has_value(), carriesReason) << row.message;
    EXPECT_EQ(MCPError::fromError(row.code, "m", row.error.data()).kind(), row.error.kind()) << row.message;
  }
  EXPECT_EQ(MCPError::methodNotFound().debugDescription(), "[-32601] Method not found");
  EXPECT_EQ(MCPError::transportError(std::runtime_error("x")).debugDescription(),
            "[-32003] Transport error: x (Underlying error: x)");
  EXPECT_EQ(encode(MCPError::fromError(-32099, "x").toValue()), R"({"code":-32099,"message":"x"})");
  EXPECT_EQ(encode(MCPError::fromError(7, "x", Value(1)).toValue()), R"({"code":7,"data":1,"message":"x"})");
}

TEST(ToolName, Findings) {
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {"vell_get.outline-2", {}},
      {"", {"Tool name cannot be empty"}},
      {"get outline",
       {"Tool name contains invalid characters: \" \"",
        "Allowed characters are: A-Z, a-z, 0-9, underscore (_), dash (-), and dot (.)",
        "Tool name contains spaces, which may cause parsing issues"}},
      {"aé,é",
       {"Tool name contains invalid characters: \"é\", \",\"",
        "Allowed characters are: A-Z, a-z, 0-9, underscore (_), dash (-), and dot (.)",
        "Tool name contains commas, which may cause parsing issues"}},
      {"-a", {"Tool name starts or ends with a dash, which may cause parsing issues in some contexts"}},
      {"a.", {"Tool name starts or ends with a dot, which may cause parsing issues in some contexts"}},
      {std::string(129, 'a'), {"Tool name exceeds maximum length of 128 characters (current: 129)"}},
  };
  for (const auto& [name, findings] : rows) EXPECT_EQ(validateToolName(name), findings) << name;
}

TEST(UriTemplate, MatchesAndDecodesOnce) {
  using Variables = UriTemplate::Variables;
  struct Row {
    const char* uriTemplate;
    const char* uri;
    std::optional<Variables> variables;
  };
  const Row rows[] = {
      {"v://file/{path}", "v://file/%2Ftmp%2Fa%20b.vell", Variables{{"path", "/tmp/a b.vell"}}},
      {"v://file/{path}", "v://file/%2525%23%3f%3B%C3%A9", Variables{{"path", "%25#?;é"}}},
      {"v://file/{path}", "v://file/", Variables{}},
      {"v://file/{path}", "v://file/a/b", std::nullopt},
      {"v://file/{path}", "v://other/a", std::nullopt},
      {"v://file/{path}", "v://file/100%", std::nullopt},
      {"v://file/{path}", "v://file/%4", std::nullopt},
      {"v://file/{path}", "v://file/%zz", std::nullopt},
      {"a{x}-{y}z", "a1-2-3z", Variables{{"x", "1"}, {"y", "2-3"}}},
      {"a{x}z", "a1", std::nullopt},
      {"fixed", "fixed", Variables{}},
      {"fixed", "fixed2", std::nullopt},
  };
  for (const Row& row : rows)
    EXPECT_EQ(UriTemplate(row.uriTemplate).match(row.uri), row.variables) << row.uri;
  for (const char* bad : {"{", "a}", "{}", "{a{b}"})
    EXPECT_THROW(UriTemplate{bad}, std::invalid_argument) << bad;
}

TEST(Content, KnowsItsTypes) {
  for (const Value& block :
       {content::text("x"), content::image("x", "image/png"), content::resourceLink({})}) {
    EXPECT_NO_THROW(content::check(block));
  }
  try {
    content::check(decode(R"({"type":"video"})"));
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "Unknown content block type: video");
  }
}

}  // namespace
}  // namespace vell::mcp

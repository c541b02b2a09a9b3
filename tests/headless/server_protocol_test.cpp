#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/headless/server_harness.h"

namespace vell::headless {
namespace {

struct Exchange {
  std::string request;
  std::string answer;
};

std::string error(const std::string& id, int code, const std::string& message) {
  return R"({"error":{"code":)" + std::to_string(code) + R"(,"message":")" + message + R"("},"id":)" + id +
         R"(,"jsonrpc":"2.0"})";
}

std::string listAnswer(const std::string& id) {
  return R"({"id":)" + id + R"(,"jsonrpc":"2.0","result":[]})";
}

TEST(Protocol, AnswersEveryRequestOrSaysWhatIsWrongWithIt) {
  const RunningServer server;
  TestClient client = server.client();
  const std::vector<Exchange> exchanges = {
      // ids come back as they were written
      {R"({"id":1,"jsonrpc":"2.0","method":"outline.list"})", listAnswer("1")},
      {R"({"id":"é\n","method":"outline.list"})", listAnswer(R"("é\n")")},
      {R"({"id":-0,"method":"outline.list"})", listAnswer("-0")},
      {R"({"id":1.0,"method":"outline.list"})", listAnswer("1.0")},
      {R"({"id":123456789012345678901234567890,"method":"outline.list"})",
       listAnswer("123456789012345678901234567890")},
      {R"({"id":null,"method":"outline.list"})", listAnswer("null")},
      {R"({"id":[1],"method":"outline.list"})", listAnswer("null")},
      {"\n \t\r\n"
       R"({"id":2,"method":"outline.list"})",
       listAnswer("2")},
      {R"({"method":"outline.list"})"
       "\n"
       R"({"id":3,"method":"outline.list"})",
       listAnswer("3")},
      // what is no request
      {"[]", error("null", -32600, "Batches are not served: send one request a line.")},
      {"12", error("null", -32600, "A request is an object, got the number 12.")},
      {R"({"id":4})", error("4", -32600, "method: expected a string, got nothing")},
      {R"({"id":4,"method":5})", error("4", -32600, "method: expected a string, got the number 5")},
      {R"({"id":4,"jsonrpc":"1.0","method":"outline.list"})",
       error("4", -32600, R"(jsonrpc: expected \"2.0\", got the string \"1.0\")")},
      // params that do not fit
      {R"({"id":5,"method":"outline.list","params":[1]})",
       error("5", -32602, "params: expected an object of named members, got an array")},
      {R"({"id":5,"method":"outline.findByPath"})",
       error("5", -32602, "path: expected a string, got nothing")},
      {R"({"id":5,"method":"outline.findByPath","params":{"path":null}})",
       error("5", -32602, "path: expected a string, got nothing")},
      {R"({"id":5,"method":"outline.findByPath","params":{"path":{}}})",
       error("5", -32602, "path: expected a string, got an object")},
      {R"({"id":5,"method":"application.open","params":{"paths":["/a",12]}})",
       error("5", -32602, R"(paths[1]: expected a string, got the number 12 (write \"12\"))")},
      {R"({"id":5,"method":"application.open","params":{"paths":[]}})",
       error("5", -32602, "paths: expected an array of at least one string, got an empty one")},
      {R"({"id":5,"method":"application.open","params":{"paths":["a"]}})",
       error("5", -32602, R"(paths: expected absolute paths, got \"a\")")},
      {R"({"id":5,"method":"outline.findByPath","params":{"path":""}})",
       error("5", -32602, R"(path: expected a path, got \"\")")},
      {R"({"id":5,"method":"outline.observe","params":{"path":""}})",
       error("5", -32602, R"(path: expected an outline path, got \"\")")},
      {R"({"id":5,"method":"application.open","params":{"paths":[""]}})",
       error("5", -32602, R"(paths: expected absolute paths, got \"\")")},
      {R"({"id":5,"method":"application.open","params":{"paths":["/","/a\u0000b"]}})",
       error("5", -32602, R"(paths: expected a path without NUL, got \"/a\\u0000b\")")},
      {R"({"id":5,"method":"outline.findByPath","params":{"path":"/a\u0000b"}})",
       error("5", -32602, R"(path: expected a path without NUL, got \"/a\\u0000b\")")},
      {R"({"id":5,"method":"row.move","params":{"rows":["1"]}})",
       error("5", -32602, "to: expected a row reference (or before, or after), got nothing")},
      // what there is not
      {R"({"id":6,"method":"outline.get"})", error("6", -32000, "No outline is open")},
      {R"({"id":6,"method":"editor.get","params":{"editor":"x"}})",
       error("6", -32000, R"(No editor has the id \"x\")")},
      {R"({"id":6,"method":"outline.findByPath","params":{"path":"/a"}})",
       R"({"id":6,"jsonrpc":"2.0","result":null})"},
  };
  for (const Exchange& exchange : exchanges) EXPECT_EQ(client.ask(exchange.request), exchange.answer);
}

TEST(Protocol, NamesTheOffsetOfBrokenJsonAndGoesOn) {
  const RunningServer server;
  TestClient client = server.client();
  const std::string broken = client.ask(R"({"id":1;"method":"outline.list"})");
  EXPECT_NE(broken.find(R"("code":-32700)"), std::string::npos) << broken;
  EXPECT_NE(broken.find("at byte 6"), std::string::npos) << broken;
  EXPECT_EQ(client.ask("\xff").find(R"({"error":{"code":-32700)"), 0U);
  EXPECT_EQ(client.ask(std::string(100'000, '[')).find(R"({"error":{"code":-32700)"), 0U);
  EXPECT_EQ(client.ask(R"({"id":2,"method":"outline.list"})"), listAnswer("2"));
}

TEST(Protocol, AnUnknownMethodIsAnsweredWithTheServedOnes) {
  const RunningServer server;
  const std::string answer = server.client().ask(R"({"id":1,"method":"outline.lst"})");
  EXPECT_NE(answer.find(R"("code":-32601,"message":"Unknown method \"outline.lst\")"), std::string::npos)
      << answer;
  EXPECT_NE(answer.find("outline.list"), std::string::npos) << answer;
}

}  // namespace
}  // namespace vell::headless

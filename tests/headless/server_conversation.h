#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/headless/server_harness.h"

namespace vell::headless {

/// 2 "Groceries" (heading) > 3 "Milk" (task, persistent id "milk"), 4 "Bread"; 5 "Later"
inline constexpr const char* groceries =
    R"({"id":"outline-1","rows":[)"
    R"({"type":"heading","text":[{"string":"Groceries"}],"children":[)"
    R"({"type":"task","id":"milk","text":[{"string":"Milk"}]},{"type":"body","text":[{"string":"Bread"}]}]},)"
    R"({"type":"body","text":[{"string":"Later"}]}]})";

/// A test that talks to a server of its own.
class Conversation : public testing::Test {
 protected:
  using json = nlohmann::json;

  /// The result, or the error's message.
  json call(const std::string& method, const json& params);
  /// The frontmost outline's rows: "Groceries(Milk Bread) Later".
  std::string picture() { return texts(call("outline.get", {{"rows", true}})); }
  static std::string texts(const json& rows);

  RunningServer server_;
  TestClient client_ = server_.client();
};

}  // namespace vell::headless

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/headless/server_harness.h"

namespace vell::headless {

/// 2 "Groceries" (heading) > 3 "Milk" (task, persistent id "milk"), 4 "Bread"; 5 "Later"
inline constexpr const char* groceries =
    R"({"id":"outline-1","rows":[)"
    R"({"type":"heading","text":[{"string":"Groceries"}],"children":[)"
    R"({"type":"task","id":"milk","text":[{"string":"Milk"}]},{"type":"body","text":[{"string":"Bread"}]}]},)"
    R"({"type":"body","text":[{"string":"Later"}]}]})";

/// What stands at a place of a JSON text, such as "0.row.text": compact, keys sorted; "" for nothing.
std::string at(const std::string& text, std::string_view place);
/// The elements of an array.
std::vector<std::string> elements(const std::string& array);

/// A test that talks to a server of its own.
class Conversation : public testing::Test {
 protected:
  /// The result as compact JSON text with sorted keys, or the error's message.
  std::string call(const std::string& method, const std::string& params = "{}");
  /// The frontmost outline's rows: "Groceries(Milk Bread) Later".
  std::string picture() { return texts(call("outline.get", R"({"rows":true})")); }
  static std::string texts(const std::string& rows);

  RunningServer server_;
  TestClient client_ = server_.client();
};

}  // namespace vell::headless

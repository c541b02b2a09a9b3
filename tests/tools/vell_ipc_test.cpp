#include "tools/vell_ipc.h"

#include <gmock/gmock.h>

#include <asio/io_context.hpp>

#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::tools {
namespace {

using ::testing::HasSubstr;
using tests::FakeApplication;
using Reply = FakeApplication::Reply;

class VellIPCTest : public ::testing::Test {
 protected:
  VellIPC::Ticket call(const std::string& method) {
    return shared.call(method, "", [this, method](const Outcome& outcome) {
      ended.push_back(method + ": " + describe(outcome));
    });
  }
  /// Runs the loop until that many calls have ended.
  void awaitEnded(std::size_t count) {
    while (ended.size() < count) loop.run_one();
  }
  std::string outcomeOf(const std::string& method) {
    call(method);
    awaitEnded(ended.size() + 1);
    return ended.back();
  }
  static std::string describe(const Outcome& outcome) {
    if (const auto* answer = std::get_if<ipc::Answer>(&outcome)) return answer->bytes();
    try {
      std::rethrow_exception(std::get<std::exception_ptr>(outcome));
    } catch (const ipc::VellIPCError& error) {
      EXPECT_STREQ(error.what(), error.underlying.what());
      return error.what();
    } catch (const std::exception& error) {
      return std::string("other error: ") + error.what();
    }
  }

  const tests::TemporaryHome home;
  asio::io_context loop;
  asio::executor_work_guard<asio::io_context::executor_type> working{loop.get_executor()};
  VellIPC shared{loop, platform::applicationSocketPath()};
  std::vector<std::string> ended;
};

TEST_F(VellIPCTest, ConnectsAnewAfterATransportFailureOnly) {
  const Reply replies[] = {FakeApplication::result("1"),
                           FakeApplication::error(3, "no"),
                           {"not json\n"},
                           FakeApplication::result("2"),
                           {"", true},
                           {R"({"id":1})", true},
                           FakeApplication::result("3")};
  std::size_t next = 0;
  EXPECT_THAT(outcomeOf("m"), HasSubstr("must be running"));
  const FakeApplication fake([&](const std::string&) { return replies[next++]; });
  EXPECT_EQ(outcomeOf("m"), "m: 1");
  EXPECT_EQ(outcomeOf("m"), "m: Vell error 3: no");
  EXPECT_THAT(outcomeOf("m"), HasSubstr("other error: "));
  EXPECT_EQ(outcomeOf("m"), "m: 2");
  EXPECT_EQ(outcomeOf("m"), "m: Vell closed the connection without sending a response.");
  EXPECT_EQ(outcomeOf("m"), "m: null");
  EXPECT_EQ(outcomeOf("m"), "m: 3");
  std::string ids;
  for (const std::string& request : fake.requests()) ids += request.substr(0, request.find(',')) + " ";
  EXPECT_EQ(ids, R"({"id":1 {"id":2 {"id":3 {"id":4 {"id":5 {"id":1 {"id":1 )");
}

TEST_F(VellIPCTest, ACallCancelledWhileItWaitsIsNeverSent) {
  struct Row {
    std::vector<std::size_t> cancelled;
    std::vector<std::string> sent;
    std::vector<std::string> ended;
  };
  const std::string gone = ": other error: The call was cancelled";
  const Row rows[] = {
      {{}, {"a", "b", "c", "d"}, {"a: \"a\"", "b: \"b\"", "c: \"c\"", "d: \"d\""}},
      {{1}, {"a", "c", "d"}, {"b" + gone, "a: \"a\"", "c: \"c\"", "d: \"d\""}},
      {{2, 1, 1}, {"a", "d"}, {"c" + gone, "b" + gone, "a: \"a\"", "d: \"d\""}},
      {{0}, {"b", "c", "d"}, {"a" + gone, "b: \"b\"", "c: \"c\"", "d: \"d\""}},  // before it is connected
      {{0, 1, 0}, {"c", "d"}, {"a" + gone, "b" + gone, "c: \"c\"", "d: \"d\""}},
  };
  const auto methodOf = [](const std::string& request) {
    constexpr std::string_view before = "\"method\":\"";
    return request.substr(request.find(before) + before.size(), 1);
  };
  for (const Row& row : rows) {
    const FakeApplication fake(
        [&](const std::string& request) { return FakeApplication::result('"' + methodOf(request) + '"'); });
    ended.clear();
    std::vector<VellIPC::Ticket> tickets;
    for (const char* method : {"a", "b", "c", "d"}) tickets.push_back(call(method));
    for (const std::size_t index : row.cancelled) shared.cancel(tickets[index]);
    awaitEnded(row.ended.size());
    EXPECT_EQ(ended, row.ended);
    std::vector<std::string> sent;
    for (const std::string& request : fake.requests()) sent.push_back(methodOf(request));
    EXPECT_EQ(sent, row.sent);
  }
}

}  // namespace
}  // namespace vell::tools

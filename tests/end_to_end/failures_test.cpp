#include <fcntl.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "platform/container.h"
#include "platform/process.h"
#include "platform/socket.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

TEST(Failures, NoApplication) {
  const TemporaryHome home;
  const std::string socket = platform::applicationSocketPath();
  const std::string message = "Error: Vell.app must be running for CLI/MCP access.\nError: (socket " + socket;
  const std::string start = platform::startCommand();
  const std::string hint = start.empty() ? "" : "hint: start it with: " + start + "\n";
  EXPECT_EQ(vell({"get", "outlines"}).error, message + ": No such file or directory)\n" + hint);
  Application application;
  application.kill();
  EXPECT_EQ(application.stop().status, -SIGKILL);
  EXPECT_EQ(vell({"get", "outlines"}).error, message + ": Connection refused)\n" + hint);
  EXPECT_EQ(vell({"get", "outlines"}).status, 1);
}

TEST(Failures, OfOpeningEndAtOnceWithTheReason) {
  const TemporaryHome home;
  const std::string list = home.write("a.json", "[1]"), fine = home.write("notes.html", "one\n");
  const Application application;
  EXPECT_EQ(vell({"open", "outline", list, "--timeout", "60"}).error,
            "Error: Vell could not open " + list + ": line 1 (byte 1): expected a row, not a number\n");
  EXPECT_NE(printed({"open", "outline", fine}).find("notes.html"), std::string::npos);
  for (const std::string name : {"new.html", "no-extension"})
    EXPECT_NE(printed({"create", "outline", home / name}).find(name), std::string::npos);
}

TEST(Failures, ThatNobodyAskedForAreToldByTheNextCommand) {
  const TemporaryHome home;
  const std::string path = home.write("a.txt", "one\n");
  const Application application;
  printed({"open", "outline", path});
  std::filesystem::remove(path);
  std::string told = vell({"create", "row", "--text", "two"}).error;
  for (int i = 0; i < 100 && told.empty(); ++i) told = vell({"get", "outlines"}).error;
  EXPECT_EQ(told.find("Note from Vell: " + path), 0U) << told;
  EXPECT_EQ(vell({"get", "outlines"}).error, "");
  EXPECT_NE(contentOf(platform::containerDirectory() + "/vell.log").find(path), std::string::npos);
}

TEST(BrokenClients, HarmNobody) {
  const TemporaryHome home;
  Application application(copySamples(home));
  const std::string before = printed({"get", "outline"});
  const std::string requests[] = {
      "\n\n\nno json\n",
      R"({"id":1,"method":"outline.get","params":{"rowRefs":[")",
      R"({"id":1,"method":"outline.get","params":[1,2]})"
      "\n",
      std::string(200'000, '['),
      std::string(4'000'000, 'x'),
      std::string("\0\xff\xfe\n", 4),
  };
  std::vector<platform::Descriptor> clients;
  for (const std::string& request : requests) {
    clients.push_back(platform::openStreamSocket());
    const int client = clients.back().get();
    ASSERT_EQ(platform::connectSocket(client, *platform::socketAddress(platform::applicationSocketPath())),
              0);
    fcntl(client, F_SETFL, O_NONBLOCK);
    // As much as goes in: none of these clients reads an answer or waits for one.
    platform::writeSocket(client, request.data(), request.size());
    EXPECT_EQ(printed({"get", "outline"}), before);
  }
  EXPECT_EQ(application.stop().status, 0);
}

}  // namespace
}  // namespace vell::tests

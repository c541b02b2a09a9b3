#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/container.h"
#include "platform/process.h"
#include "platform/socket.h"
#include "tests/end_to_end/application.h"
#include "tests/support/fake_application.h"

namespace vell::tests {
namespace {

TEST(Failures, OfTheConnection) {
  const struct {
    FakeApplication::Reply reply;
    const char* error;
  } rows[] = {
      {{"", true}, "Error: Vell closed the connection without sending a response.\n"},
      {{R"({"id":1,"error":{"code":-32601,"message":"no such method"}})"
        "\n"},
       "Error: Vell error -32601: no such method\n"},
      {{R"({"id":1,"error":{}})"
        "\n"},
       "Error: Vell error -1: Unknown error\n"},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    const FakeApplication application([&row](const std::string&) { return row.reply; });
    const Ended ended = vell({"get", "outlines"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.output, "");
    EXPECT_EQ(ended.error, row.error);
  }
}

TEST(Failures, BrokenJsonNamesItsOffset) {
  const TemporaryHome home;
  const FakeApplication application([](const std::string&) {
    return FakeApplication::Reply{"{\"id\":1,\"result\":[1,}\n", false};
  });
  const Ended ended = vell({"get", "outlines"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.error.find("20"), std::string::npos) << ended.error;
}

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
  const std::string picture = home.write("a.png", std::string("\x89PNG\0", 5));
  const std::string latin = home.write("a.md", "gr\xFC\xDF");
  const std::string list = home.write("a.json", "[1]");
  const struct {
    std::string path;
    std::string reason;
  } rows[] = {
      {picture, "it is not a text"},
      {latin, "line 1 (byte 2): not valid UTF-8; save the file as UTF-8"},
      {home.path(), "it is a folder"},
      {list, "line 1 (byte 1): "},
  };
  const Application application;
  for (const auto& [path, reason] : rows) {
    const Ended ended = vell({"open", "outline", path, "--timeout", "60"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.error.find("Error: Vell could not open " + path + ": " + reason), 0U) << ended.error;
  }
  const std::string fine = home.write("notes.html", "one\n");
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
  EXPECT_NE(read(platform::containerDirectory() + "/vell.log").find(path), std::string::npos);
}

TEST(Failures, ASocketPathThatIsTooLong) {
  const TemporaryHome home;
  const std::string deep = home / std::string(100, 'x');
  setenv("HOME", deep.c_str(), 1);
  const Ended ended = vell({"get", "outlines"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error,
            "Error: Socket path exceeds AF_UNIX limit: " + platform::applicationSocketPath() + "\n");
}

TEST(Output, AClosedPipeEndsARunQuietly) {
  const TemporaryHome home;
  const Application application(copySamples(home));
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  Process process({VELL, "get", "outline"}, "", ends[1]);
  close(ends[1]);
  EXPECT_EQ(process.wait().error, "");
}

TEST(Output, AFullDiskIsAnError) {
  const int full = open("/dev/full", O_WRONLY);
  if (full < 0) GTEST_SKIP() << "this system has no /dev/full";
  const TemporaryHome home;
  const Application application(copySamples(home));
  const Ended ended = Process({VELL, "get", "outline"}, "", full).wait();
  close(full);
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "Error: Cannot write to standard output: No space left on device\n");
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

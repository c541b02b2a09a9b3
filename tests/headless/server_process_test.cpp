#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "platform/container.h"
#include "tests/headless/server_harness.h"
#include "tests/support/process.h"

namespace vell::headless {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using tests::contentOf;
using tests::Ended;
using tests::Process;

unsigned modeOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status.st_mode & 0777U;
}

const std::string list = R"({"id":1,"method":"outline.list"})";

TEST(HeadlessProcess, ServesPrivatelyAndEndsCleanlyOnASignal) {
  for (const int number : {SIGTERM, SIGINT}) {
    const tests::TemporaryHome home;
    Process first(VELL_HEADLESS);
    const std::string socket = platform::applicationSocketPath();
    TestClient(socket).ask(list);
    EXPECT_EQ(modeOf(socket), 0600U);
    EXPECT_EQ(modeOf(platform::containerDirectory()), 0700U);
    first.signal(number);
    EXPECT_EQ(first.wait().status, 0);
    EXPECT_NE(access(socket.c_str(), F_OK), 0);
  }
}

TEST(HeadlessProcess, ASecondStartHandsItsFilesToTheFirst) {
  const tests::TemporaryHome home;
  home.write("a.json", R"({"rows":[]})");
  home.write("bad.json", "no outline");
  home.write("folder/b.md", "b\n");
  Process first(VELL_HEADLESS, {home / "bad.json"});
  TestClient client(platform::applicationSocketPath());
  client.ask(list);
  const std::string runs = "vell-headless: Vell runs already (process " + std::to_string(first.id()) + ")";
  const Ended second = Process(VELL_HEADLESS, {home / "a.json", home / "folder"}).wait();
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.error,
            runs + " and serves that now, too. \"vell-headless status\" shows what it serves.\n");
  EXPECT_THAT(client.ask(list), testing::AllOf(HasSubstr("a.json"), HasSubstr("b.md")));
  const Ended refused = Process(VELL_HEADLESS, {home / "bad.json"}).wait();
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.error, StartsWith("vell-headless: Cannot open " + (home / "bad.json")));
  const Ended alone = Process(VELL_HEADLESS).wait();
  EXPECT_EQ(alone.status, 1);
  EXPECT_EQ(alone.error,
            runs + ". \"vell-headless status\" shows what it serves, \"vell-headless stop\" ends it.\n");
  first.signal(SIGTERM);
  EXPECT_THAT(first.wait().error,
              testing::AllOf(StartsWith("vell-headless: Cannot open " + (home / "bad.json")),
                             HasSubstr("vell-headless: serves no outlines yet")));
}

TEST(HeadlessProcess, AcceptedChangesOutliveASignal) {
  const tests::TemporaryHome home;
  const std::string path = home.write("a.md", "- one\n");
  Process process(VELL_HEADLESS, {path});
  TestClient(platform::applicationSocketPath())
      .ask(R"({"id":1,"method":"row.create","params":{"markdown":"two"}})");
  process.signal(SIGTERM);
  EXPECT_EQ(process.wait().status, 0);
  EXPECT_NE(contentOf(path).find("two"), std::string::npos);
}

TEST(HeadlessProcess, ClosingKeepsWhatIsWorthKeeping) {
  const tests::TemporaryHome home;
  const std::string path = home.write("a.md", "- one\n");
  const Process process(VELL_HEADLESS, {path});
  TestClient client(platform::applicationSocketPath());
  client.ask(R"({"id":1,"method":"row.create","params":{"markdown":"two"}})");
  client.ask(R"({"id":1,"method":"outline.close"})");
  EXPECT_NE(contentOf(path).find("two"), std::string::npos);
  client.ask(R"({"id":1,"method":"outline.new"})");
  client.ask(R"({"id":1,"method":"row.create","params":{"markdown":"kept"}})");
  client.ask(R"({"id":1,"method":"outline.close"})");
  EXPECT_NE(contentOf(platform::containerDirectory() + "/Closed/Untitled 1.vell").find("kept"),
            std::string::npos);
  EXPECT_EQ(client.ask(list), R"({"id":1,"jsonrpc":"2.0","result":[]})");
}

TEST(HeadlessProcess, TellsThoseWhoObserveThatItQuits) {
  const tests::TemporaryHome home;
  const Process process(VELL_HEADLESS);
  TestClient client(platform::applicationSocketPath());
  client.ask(R"({"id":1,"method":"documents.observe"})");
  client.line();
  process.signal(SIGTERM);
  EXPECT_NE(client.line().find(R"("data":{"reason":"appQuitting"},"kind":"subscription.closed")"),
            std::string::npos);
  EXPECT_EQ(client.line(), "<end>");
}

TEST(HeadlessProcess, RefusesWhatItCannotDo) {
  const tests::TemporaryHome home;
  EXPECT_EQ(Process(VELL_HEADLESS, {"--no-such-option"}).wait().status, 64);
  EXPECT_EQ(Process(VELL_HEADLESS, {"--help"}).wait().status, 0);
  const std::pair<std::string, std::string> paths[] = {
      {home / "gone.json", "No such file or folder: " + (home / "gone.json")},
      {"", "A path is empty: name a file or a folder"},
  };
  for (const auto& [path, reason] : paths) {
    const Ended refused = Process(VELL_HEADLESS, {path}).wait();
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, "vell-headless: " + reason + "\n");
  }
  const std::string deep = home / std::string(90, 'x');
  setenv("HOME", deep.c_str(), 1);
  const Ended tooLong = Process(VELL_HEADLESS).wait();
  setenv("HOME", home.path().c_str(), 1);
  EXPECT_EQ(tooLong.status, 1);
  EXPECT_EQ(tooLong.error.find("vell-headless: The socket path is longer than 103 bytes: " + deep), 0U)
      << tooLong.error;
}

}  // namespace
}  // namespace vell::headless

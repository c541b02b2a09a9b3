#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/container.h"
#include "tests/headless/server_harness.h"

namespace vell::headless {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Ended {
  int status;
  std::string standardError;
};

/// The executable, started with those arguments; its standard error goes to a file.
class Process {
 public:
  Process(const std::string& errorFile, std::vector<std::string> arguments) : errorFile_(errorFile) {
    arguments.insert(arguments.begin(), VELL_HEADLESS);
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ != 0) return;
    dup2(open(errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  ~Process() {
    if (pid_ == 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  pid_t id() const { return pid_; }
  void signal(int number) const { kill(pid_, number); }
  Ended wait() {
    int status = 0;
    waitpid(std::exchange(pid_, 0), &status, 0);
    std::stringstream text;
    text << std::ifstream(errorFile_).rdbuf();
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), text.str()};
  }

 private:
  std::string errorFile_;
  pid_t pid_;
};

unsigned modeOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status.st_mode & 0777U;
}

const std::string list = R"({"id":1,"method":"outline.list"})";

TEST(HeadlessProcess, ServesPrivatelyAndEndsCleanlyOnASignal) {
  for (const int number : {SIGTERM, SIGINT}) {
    const tests::TemporaryHome home;
    Process first(home / "first", {});
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
  Process first(home / "first", {home / "bad.json"});
  TestClient client(platform::applicationSocketPath());
  client.ask(list);
  const std::string runs = "vell-headless: Vell runs already (process " + std::to_string(first.id()) + ")";
  const Ended second = Process(home / "second", {home / "a.json", home / "folder"}).wait();
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.standardError,
            runs + " and serves that now, too. \"vell-headless status\" shows what it serves.\n");
  EXPECT_THAT(client.ask(list), testing::AllOf(HasSubstr("a.json"), HasSubstr("b.md")));
  const Ended refused = Process(home / "second", {home / "bad.json"}).wait();
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.standardError, StartsWith("vell-headless: Cannot open " + (home / "bad.json")));
  const Ended alone = Process(home / "second", {}).wait();
  EXPECT_EQ(alone.status, 1);
  EXPECT_EQ(alone.standardError,
            runs + ". \"vell-headless status\" shows what it serves, \"vell-headless stop\" ends it.\n");
  first.signal(SIGTERM);
  EXPECT_THAT(first.wait().standardError,
              testing::AllOf(StartsWith("vell-headless: Cannot open " + (home / "bad.json")),
                             HasSubstr("vell-headless: serves no outlines yet")));
}

TEST(HeadlessProcess, AnOutlineKeepsItsIdOverRestartsWhetherItsFileHoldsOneOrNot) {
  const tests::TemporaryHome home;
  home.write("plain.txt", "one\n");
  std::string answers[2];
  for (std::string& answer : answers) {
    const Process process(home / "e", {home / "plain.txt"});
    answer = TestClient(platform::applicationSocketPath()).ask(list);
  }
  EXPECT_NE(answers[0].find("plain.txt"), std::string::npos);
  EXPECT_EQ(answers[0], answers[1]);
}

std::string contentOf(const std::string& path) {
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// Waits until the file holds the text, for ten seconds.
bool comesToHold(const std::string& path, const std::string& text) {
  for (int i = 0; i < 1000; ++i, usleep(10'000))
    if (contentOf(path).find(text) != std::string::npos) return true;
  return false;
}

TEST(HeadlessProcess, AcceptedChangesOutliveASignalAndAKill) {
  const tests::TemporaryHome home;
  const std::string path = home.write("a.md", "- one\n");
  {
    Process process(home / "e", {path});
    TestClient(platform::applicationSocketPath())
        .ask(R"({"id":1,"method":"row.create","params":{"markdown":"two"}})");
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait().status, 0);
    EXPECT_NE(contentOf(path).find("two"), std::string::npos);
  }
  Process process(home / "e", {path});
  TestClient(platform::applicationSocketPath())
      .ask(R"({"id":1,"method":"row.create","params":{"markdown":"three"}})");
  EXPECT_TRUE(comesToHold(path, "three"));
}

TEST(HeadlessProcess, WhatCannotBeSavedInItsPlaceIsRescued) {
  const tests::TemporaryHome home;
  home.write("folder/a.txt", "one\n");
  Process process(home / "e", {home / "folder/a.txt"});
  TestClient client(platform::applicationSocketPath());
  client.ask(list);
  std::filesystem::remove_all(home / "folder");
  client.ask(R"({"id":1,"method":"row.create","params":{"markdown":"two"}})");
  process.signal(SIGTERM);
  EXPECT_EQ(process.wait().status, 0);
  for (const auto& entry : std::filesystem::directory_iterator(platform::containerDirectory() + "/Rescued"))
    EXPECT_EQ(contentOf(entry.path().string()), "one\ntwo\n");
  EXPECT_NE(contentOf(home / "e").find("/Rescued/"), std::string::npos);
}

TEST(HeadlessProcess, UntitledOutlinesOutliveAKillUntilTheyAreDiscarded) {
  const tests::TemporaryHome home;
  std::string summary;
  {
    const Process process(home / "e", {});
    TestClient client(platform::applicationSocketPath());
    client.ask(R"({"id":1,"method":"outline.new","params":{"format":"markdown"}})");
    client.ask(R"({"id":1,"method":"row.create","params":{"markdown":"kept"}})");
    summary = client.ask(list);
    EXPECT_NE(summary.find(R"("displayName":"Untitled 1","fileURL":null)"), std::string::npos) << summary;
    ASSERT_TRUE(comesToHold(platform::containerDirectory() + "/Untitled/Untitled 1.md", "kept"));
  }
  const Process process(home / "e", {});
  TestClient client(platform::applicationSocketPath());
  EXPECT_EQ(client.ask(list), summary);
  EXPECT_NE(client.ask(R"({"id":1,"method":"outline.get"})").find("kept"), std::string::npos);
  EXPECT_EQ(client.ask(R"({"id":1,"method":"outline.close","params":{"discard":true}})"),
            R"({"id":1,"jsonrpc":"2.0","result":{"closed":true}})");
  EXPECT_NE(access((platform::containerDirectory() + "/Untitled/Untitled 1.md").c_str(), F_OK), 0);
}

TEST(HeadlessProcess, ClosingKeepsWhatIsWorthKeeping) {
  const tests::TemporaryHome home;
  const std::string path = home.write("a.md", "- one\n");
  const Process process(home / "e", {path});
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
  const Process process(home / "e", {});
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
  EXPECT_EQ(Process(home / "e", {"--no-such-option"}).wait().status, 64);
  EXPECT_EQ(Process(home / "e", {"--help"}).wait().status, 0);
  const Ended missing = Process(home / "e", {home / "gone.json"}).wait();
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.standardError, "vell-headless: No such file or folder: " + (home / "gone.json") + "\n");
  const std::string deep = home / std::string(90, 'x');
  setenv("HOME", deep.c_str(), 1);
  const Ended tooLong = Process(home / "e", {}).wait();
  setenv("HOME", home.path().c_str(), 1);
  EXPECT_EQ(tooLong.status, 1);
  EXPECT_EQ(tooLong.standardError.find("vell-headless: The socket path is longer than 103 bytes: " + deep),
            0U)
      << tooLong.standardError;
}

}  // namespace
}  // namespace vell::headless

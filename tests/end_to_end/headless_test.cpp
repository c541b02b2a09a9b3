#include <fcntl.h>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/container.h"
#include "platform/descriptor.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Ended headless(std::vector<std::string> arguments) {
  return Process(VELL_HEADLESS, std::move(arguments)).wait();
}

/// What a command of `vell-headless` prints; it succeeds.
std::string said(std::vector<std::string> arguments) {
  const Ended ended = headless(std::move(arguments));
  EXPECT_EQ(ended.status, 0) << ended.error;
  return ended.output;
}

/// Waits, a minute at most, until the function says that it is so.
template <class Condition>
bool comesTrue(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

bool statusComesToSay(const std::string& text) {
  return comesTrue([&] { return said({"status"}).find(text) != std::string::npos; });
}

TEST(Headless, ItsCommandsSayThatItDoesNotRun) {
  const TemporaryHome home;
  const std::string hint = "vell-headless: not running. Start it with: vell-headless ~/notes\n";
  const Ended status = headless({"status"});
  EXPECT_EQ(status.status, 3);
  EXPECT_EQ(status.output + status.error, hint);
  const Ended json = headless({"status", "--json"});
  EXPECT_EQ(json.status, 3);
  EXPECT_EQ(json.output, "");
  const Ended stop = headless({"stop"});
  EXPECT_EQ(stop.status, 0);
  EXPECT_EQ(stop.output + stop.error, hint);
  const std::string log = platform::containerDirectory() + "/vell.log";
  EXPECT_EQ(headless({"log"}).error, "vell-headless: nothing was logged yet in " + log + "\n");
}

TEST(Headless, SaysWhatIsWrongWithACommandLine) {
  const TemporaryHome home;
  home.write(".config", "");  // where services would be described, on Linux
  home.write("Library/LaunchAgents", "");
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string says;
  } rows[] = {
      {{"stop", "--timeout", "0"}, 64, "vell-headless: --timeout: "},
      {{"stop", "--timeout"}, 64, "vell-headless: --timeout: "},
      {{"stop", "now"}, 64, "Unexpected argument 'now'.\nSee 'vell-headless stop --help'"},
      {{"status", "--jsn"},
       64,
       "Unknown option '--jsn'. Did you mean '--json'?\nSee 'vell-headless status --help'"},
      {{"--frehs=1"}, 64, "Unknown option '--frehs'. Did you mean '--fresh'?\nSee 'vell-headless --help'"},
      {{home.path(), "stop"}, 64, "A command takes the place of files and folders"},
      {{"service"}, 64, "Write a command behind 'service': install, remove or status."},
      {{"service", "instal"},
       64,
       "Unknown command 'instal'. Did you mean 'install'?\nSee 'vell-headless service --help'"},
      {{"help", "service", "remov"}, 64, "Unknown command 'remov'. Did you mean 'remove'?"},
      {{"statsu"},
       1,
       "No such file or folder: " + fs::current_path().string() + "/statsu. Did you mean 'status'?"},
      {{"nothing"}, 1, "(commands are status, stop, log and service; see vell-headless --help)"},
      {{"service", "install", "nothing"}, 1, fs::current_path().string() + "/nothing\n"},
      {{"service", "install"}, 1, "vell-headless: Cannot "},
      {{""}, 1, "A path is empty: name a file or a folder"},
      {{"help", "service", "install"}, 0, "vell-headless service install [OPTIONS] [PATH...]"},
      {{"help"}, 0, "vell-headless service install ~/notes"},
      {{"log", "-h"}, 0, "vell-headless log -f"},
  };
  for (const auto& [arguments, status, says] : rows) {
    const Ended ended = headless(arguments);
    EXPECT_EQ(ended.status, status) << testing::PrintToString(arguments);
    EXPECT_THAT(ended.output + ended.error, HasSubstr(says)) << testing::PrintToString(arguments);
  }
}

TEST(Headless, OpensAgainWhatWasOpenHoweverItEnded) {
  const TemporaryHome home;
  home.write("notes/a.md", "# A\n");
  home.write("notes/\x1b[31m.md", "\xFF");
  home.write("notes/sub/b.txt", "b\n");
  const std::string single = home.write("single.md", "one\n");
  std::string untitled;
  {
    Application application({home / "notes"});
    printed({"open", "outline", single});
    untitled = printed({"create", "outline"});
    printed({"create", "row", "--text", "kept"});
    const std::string session = platform::containerDirectory() + "/session";
    EXPECT_TRUE(comesTrue([&] { return contentOf(session).find(single) != std::string::npos; }));
    EXPECT_TRUE(comesTrue([&] { return said({"status"}).find("unsaved") == std::string::npos; }));
    application.kill();
  }
  {
    Application application;
    const std::string status = said({"status"});
    for (const std::string& line : {"folder    " + home / "notes", "saved     " + home / "notes/a.md",
                                    "saved     " + home / "notes/sub/b.txt", "saved     " + single,
                                    std::string("saved     Untitled 1 (no file)")})
      EXPECT_THAT(status, HasSubstr(line + "\n"));
    EXPECT_THAT(printed({"get", "outlines"}), HasSubstr(untitled.substr(0, untitled.size() - 1)));
    EXPECT_EQ(printed({"get", "outline", "--outline", "Untitled 1", "-o", "txt"}), "kept\n\n");
    EXPECT_THAT(said({"log"}), HasSubstr("Cannot open " + home / "notes/?[31m.md: "));
    EXPECT_THAT(said({"stop"}), "Ended process " + std::to_string(application.process()) + "\n");
    EXPECT_EQ(application.stop().status, 0);
  }
  {
    const Application application({"--fresh", single});
    EXPECT_THAT(said({"status"}), AllOf(HasSubstr("serves    1 outline\n"), Not(HasSubstr("folder"))));
  }
  const Application application;
  EXPECT_THAT(printed({"get", "outlines"}),
              AllOf(HasSubstr("single.md"), HasSubstr("Untitled 1"), Not(HasSubstr("a.md\""))));
}

TEST(Headless, ItsStatusAndLogTellWhatIsAmiss) {
  const TemporaryHome home;
  home.write("folder/a.md", "a\n");
  Application application({home / "folder/a.md"});
  const platform::Descriptor output(open((home / "followed").c_str(), O_WRONLY | O_CREAT, 0600));
  const Process follower(VELL_HEADLESS, {"log", "--follow"}, "", output.get());
  fs::rename(home / "folder", home / "away");
  printed({"create", "row", "--text", "two"});
  const std::string fault = "Cannot save " + home / "folder/a.md";
  EXPECT_TRUE(statusComesToSay("FAULT     " + home / "folder/a.md" + "\n          " + fault));
  EXPECT_THAT(said({"log"}), HasSubstr(fault));
  EXPECT_TRUE(comesTrue([&] { return contentOf(home / "followed").find(fault) != std::string::npos; }));
  // A log that has grown long is put aside: whoever follows it goes on with the new one.
  const std::string log = platform::containerDirectory() + "/vell.log";
  fs::rename(log, log + ".old");
  std::ofstream(log) << "another line\n";
  EXPECT_TRUE(comesTrue([&] { return contentOf(home / "followed").ends_with("\nanother line\n"); }));
  fs::rename(home / "away", home / "folder");
  EXPECT_TRUE(statusComesToSay("saved     " + home / "folder/a.md"));
  EXPECT_EQ(contentOf(home / "folder/a.md"), "a\n\ntwo\n");
}

TEST(Headless, StoppingSavesAndTellsWhatCouldOnlyBeRescued) {
  const TemporaryHome home;
  home.write("folder/a.md", "a\n");
  Application application({home / "folder/a.md"});
  fs::remove_all(home / "folder");
  printed({"create", "row", "--text", "two"});
  EXPECT_TRUE(statusComesToSay("FAULT"));
  printed({"get", "outlines"});  // takes the note about the fault
  const Ended stopped = headless({"stop", "--timeout", "60"});
  EXPECT_EQ(stopped.status, 0);
  EXPECT_THAT(stopped.error,
              HasSubstr("vell-headless: What could not be saved as " + (home / "folder/a.md") + " is in "));
  EXPECT_THAT(stopped.output, testing::StartsWith("Ended process "));
  for (const auto& rescued : fs::directory_iterator(platform::containerDirectory() + "/Rescued"))
    EXPECT_EQ(contentOf(rescued.path()), "a\n\ntwo\n");
}

}  // namespace
}  // namespace vell::tests

#include <gtest/gtest.h>

#include <sstream>

#include "cli/commands.h"
#include "cli/help.h"
#include "tests/cli/run.h"
#include "tests/support/temporary_directory.h"
#include "text/display_width.h"

namespace vell::cli {
namespace {

std::string withoutProgram(const std::string& path) { return path.size() > 5 ? path.substr(5) : ""; }

TEST(Help, OfEveryCommandFitsTheScreenAndIsReachedInEveryWay) {
  for (const TreeEntry& entry : wholeTree(vellCommand)) {
    const std::string line = withoutProgram(entry.path);
    const Outcome help = run(line + " --help");
    EXPECT_EQ(help.status, 0) << line;
    EXPECT_NE(help.out.find("USAGE\n  " + entry.path), std::string::npos) << line;
    EXPECT_NE(help.out.find(entry.command->subcommands.empty() ? "EXAMPLES" : "SUBCOMMANDS"),
              std::string::npos)
        << line;
    std::istringstream lines(help.out);
    for (std::string text; std::getline(lines, text);)
      EXPECT_LE(text::displayWidth(text), screenWidth) << line << ": " << text;
    for (const std::string& form : {line + " -h", "help " + line}) {
      EXPECT_EQ(run(form).out, help.out) << form;
    }
    if (entry.command->run == nullptr) {
      EXPECT_EQ(run(line).out, help.out) << line;
    }
  }
}

// Every example is a command line that is taken as one: what fails is the connection, or what comes before it
// in reading a file, never the usage.
TEST(Help, ExamplesAreValidCommandLines) {
  tests::TemporaryHome home;
  for (const TreeEntry& entry : wholeTree(vellCommand)) {
    for (const Example& example : entry.command->examples) {
      if (entry.command->name == "mcp") continue;
      const Outcome outcome = run(example.line);
      EXPECT_EQ(outcome.status, 1) << example.line << "\n" << outcome.err;
      EXPECT_EQ(example.line.substr(0, withoutProgram(entry.path).size()), withoutProgram(entry.path));
    }
  }
}

TEST(Help, TheRootIsShownWithoutArgumentsAndTheVersionEverywhere) {
  for (const char* form : {"help", "help help", "--help"}) EXPECT_EQ(run(form).out, run("").out) << form;
  for (const char* form : {"get help outline rows", "help get help outline rows"})
    EXPECT_EQ(run(form).out, run("help get outline rows").out) << form;
  EXPECT_NE(run("").out.find("\n  help  "), std::string::npos);
  const std::string version = run("--version").out;
  EXPECT_FALSE(version.empty());
  EXPECT_EQ(run("get outline 12 --version").out, version);
  EXPECT_EQ(run("update rows --text a --version").out, version);
}

}  // namespace
}  // namespace vell::cli

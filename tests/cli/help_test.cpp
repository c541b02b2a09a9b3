#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>

#include "cli/commands.h"
#include "cli/completion.h"
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
  EXPECT_EQ(run("").out, run("help").out);
  const std::string version = run("--version").out;
  EXPECT_FALSE(version.empty());
  EXPECT_EQ(run("get outline 12 --version").out, version);
  EXPECT_EQ(run("update rows --text a --version").out, version);
}

struct CompletionCase {
  const char* typed;
  const char* offered;
};

/// What bash offers behind the typed words; the last one is what is being completed.
std::string completed(const std::string& script, const std::string& typed) {
  const std::string command = "bash -c 'source " + script + "; COMP_WORDS=(vell " + typed +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vell; echo \"${COMPREPLY[*]}\"'";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string out;
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) out += static_cast<char>(c);
  return out;
}

TEST(Completion, OfBashFollowsTheTree) {
  const tests::TemporaryDirectory directory;
  const std::string script = directory.write("vell.bash", completionScript(vellCommand, "bash"));
  const CompletionCase cases[] = {
      {"g", "get\n"},
      {"he", "help\n"},
      {"help get outl", "outline outlines\n"},
      {"get outl", "outline outlines\n"},
      {"get outline r", "rows\n"},
      {"get outline -o m", "markdown\n"},
      {"get outline --output op", "opml\n"},
      {"get outline -o json --sh", "--shape\n"},
      {"update rows @", "@selection @focused\n"},
      {"move rows 12 --to @f", "@focused\n"},
      {"close outline --outline x --d", "--discard\n"},
      {"get outline --outline r", "\n"},
  };
  for (const auto& [typed, offered] : cases) EXPECT_EQ(completed(script, typed), offered) << typed;
}

TEST(Completion, ScriptsOfAllShellsKnowAllCommandsAndOptions) {
  for (const std::string_view shell : completionShells) {
    const std::string text = run("--generate-completion-script " + std::string(shell)).out;
    for (const TreeEntry& entry : wholeTree(vellCommand)) {
      EXPECT_NE(text.find(entry.path), std::string::npos);
      for (const Option* option : entry.command->options) {
        if (option->positional()) continue;
        EXPECT_NE(text.find(option->name.substr(2)), std::string::npos) << option->name;
      }
    }
  }
}

}  // namespace
}  // namespace vell::cli

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>

#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

namespace fs = std::filesystem;

/// A command of a page as a reader types it, and what the page says comes out.
struct Example {
  std::size_t line;
  std::string command;
  std::string output;
};

/// A fenced block of a page.
struct Block {
  std::string language;
  std::size_t firstLine;
  std::vector<std::string> lines;
};

std::vector<Block> blocks(const std::string& page) {
  constexpr std::string_view fence = "```";
  std::vector<Block> found;
  std::istringstream lines(page);
  bool inside = false;
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (line.starts_with(fence)) {
      inside = !inside;
      if (inside) found.push_back({line.substr(fence.size()), number + 1, {}});
    } else if (inside) {
      found.back().lines.push_back(line);
    }
  }
  return found;
}

/// The examples of the blocks marked "console": a command behind "$ ", continued behind "> ", then its
/// output.
std::vector<Example> examples(const std::string& page) {
  std::vector<Example> found;
  for (const auto& [language, first, lines] : blocks(page)) {
    if (language != "console") continue;
    bool continues = false;
    for (std::size_t at = 0; at < lines.size(); ++at) {
      const std::string& line = lines[at];
      if (line.starts_with("$ ")) {
        found.push_back({first + at, line.substr(2), ""});
        continues = true;
      } else if (continues && (line.starts_with("> ") || line == ">")) {
        found.back().command += "\n" + line.substr(std::min<std::size_t>(2, line.size()));
      } else if (at > 0) {
        continues = false;
        found.back().output += line + "\n";
      }
    }
  }
  return found;
}

/// The text with what differs from run to run written in one way: ids, times, the home directory, process
/// ids.
std::string masked(std::string text, const std::string& home) {
  const std::pair<std::regex, const char*> rows[] = {
      {std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"), "<id>"},
      {std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:.]+Z"), "<time>"},
      {std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"), "<time>"},
      {std::regex("process( +)[0-9]+"), "process$1<number>"},
  };
  for (std::size_t at; !home.empty() && (at = text.find(home)) != std::string::npos;) {
    text.replace(at, home.size(), "/home/ada");
  }
  for (const auto& [pattern, name] : rows) text = std::regex_replace(text, pattern, name);
  return text;
}

/// The text without the line ends behind it: blank lines between an example and the next one are layout.
std::string trimmed(const std::string& text) { return text.substr(0, text.find_last_not_of('\n') + 1); }

/// Whether the text is the expected one, in which "…" stands for anything.
bool matches(std::string_view text, std::string_view expected) {
  constexpr std::string_view anything = "…";
  std::size_t cut = expected.find(anything);
  if (cut == std::string_view::npos) return text == expected;
  if (!text.starts_with(expected.substr(0, cut))) return false;
  text.remove_prefix(cut);
  while (true) {
    expected.remove_prefix(cut + anything.size());
    cut = expected.find(anything);
    if (cut == std::string_view::npos) return text.ends_with(expected);
    const std::size_t at = text.find(expected.substr(0, cut));
    if (at == std::string_view::npos) return false;
    text.remove_prefix(at + cut);
  }
}

/// One shell that runs all examples of a page and ends each one's output with a mark. What goes on in the
/// background is waited for until it serves, and stopped at the end.
std::string scriptOf(const std::vector<Example>& examples) {
  std::string script =
      "cd\n"
      "trap 'vell-headless stop >/dev/null 2>&1' EXIT\n"
      "serving() { for i in $(seq 600); do vell get outlines >/dev/null 2>&1 && return; sleep 0.1; done; }\n";
  for (const Example& example : examples) {
    const bool background = example.command.ends_with("&");
    script += background ? "{ " + example.command + " } >/dev/null 2>&1\nserving\n"
                         : "{ " + example.command + "\n} 2>&1\n";
    script += "printf '\\036'\n";
  }
  return script;
}

class Documentation : public testing::TestWithParam<const char*> {};

TEST_P(Documentation, SaysWhatItsCommandsPrint) {
  const std::string page = contentOf(std::string(VELL_SOURCE) + "/" + GetParam());
  ASSERT_FALSE(page.empty());
  const std::vector<Example> all = examples(page);
  if (all.empty()) return;

  const TemporaryHome home;
  fs::copy(VELL_SAMPLES, home / "samples");
  const std::string path = fs::path(VELL).parent_path().string() + ":" +
                           fs::path(VELL_HEADLESS).parent_path().string() + ":" + std::getenv("PATH");
  const Ended ended =
      Process("/usr/bin/env", {"PATH=" + path, "LC_ALL=C.UTF-8", "NO_COLOR=1", "bash", "-c", scriptOf(all)})
          .wait();
  std::istringstream outputs(ended.output);
  for (const Example& example : all) {
    std::string output;
    ASSERT_TRUE(std::getline(outputs, output, '\036'))
        << "the shell ended before line " << example.line << ": " << ended.error;
    output = masked(trimmed(output), home.path());
    EXPECT_TRUE(matches(output, masked(trimmed(example.output), "")))
        << GetParam() << ":" << example.line << ": $ " << example.command << "\nprints\n"
        << output;
  }
}

TEST_P(Documentation, ShowsCommandsWithWhatTheyPrint) {
  const std::regex command("(\\$ )?vell(-headless)? [a-z-].*");
  for (const auto& [language, first, lines] :
       blocks(contentOf(std::string(VELL_SOURCE) + "/" + GetParam()))) {
    if (language == "console") continue;
    for (const std::string& line : lines)
      EXPECT_FALSE(std::regex_match(line, command)) << GetParam() << ":" << first << ": " << line;
  }
}

// Commands that prose and tables name are valid command lines. Those that would start an application are left
// out.
TEST_P(Documentation, NamesCommandsThatExist) {
  const TemporaryHome home;
  const std::string page = contentOf(std::string(VELL_SOURCE) + "/" + GetParam());
  const std::regex span("`(vell (?!open|create outline|1`)[^`<>…]*)`");
  for (std::sregex_iterator at(page.begin(), page.end(), span), end; at != end; ++at) {
    const std::string command = "cd; " + fs::path(VELL).string() + (*at)[1].str().substr(4);
    const Ended ended = Process("/usr/bin/env", {"bash", "-c", command}).wait();
    const bool nameOnly = ended.error.starts_with("Error: Missing required");
    EXPECT_TRUE(ended.status == 0 || ended.status == 1 || nameOnly) << GetParam() << ": " << at->str() << "\n"
                                                                    << ended.error;
  }
}

/// The command lines of a manual page: behind "$ ", in a display or a line of their own, continued where the
/// next line is indented.
std::vector<Example> manualExamples(const std::string& page) {
  std::vector<Example> found;
  std::istringstream lines(page);
  const std::regex command("(?:\\.Dl )?\\$ (.*)");
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    line = std::regex_replace(line, std::regex("\\\\e"), "\\");
    std::smatch parts;
    if (std::regex_match(line, parts, command)) {
      found.push_back({number, parts[1], ""});
    } else if (line.starts_with("    ") && !found.empty() && found.back().line + 1 == number) {
      found.back().command += "\n" + line;
    }
  }
  return found;
}

/// A command that goes on until it is interrupted, or sets up the user's services, only explains itself.
std::string endingAtOnce(const std::string& command) {
  const std::regex lasting("^(vell observe [^|]*|vell-headless (?:~|service)[^|]*).*");
  return std::regex_replace(command, lasting, "$1 --help ");
}

// One after the other, in the order of the page, over the sample outlines.
TEST(ManualPages, ShowCommandsThatWork) {
  const TemporaryHome home;
  fs::create_directory(home / "notes");
  copySamples(home);
  home.write("packing.md", "- [ ] Tent\n- [ ] Stove\n");
  const Application application({home / "groceries.vell"});
  const std::string path = fs::path(VELL).parent_path().string() + ":" +
                           fs::path(VELL_HEADLESS).parent_path().string() + ":" + std::getenv("PATH");
  for (const char* name : {"vell.1", "vell-headless.1"}) {
    const auto examples = manualExamples(contentOf(std::string(VELL_SOURCE) + "/docs/man/" + name));
    EXPECT_FALSE(examples.empty()) << name;
    for (const Example& example : examples) {
      const std::string script = "cd; set -o pipefail; " + endingAtOnce(example.command);
      const Ended ended = Process("/usr/bin/env", {"PATH=" + path, "bash", "-c", script}).wait();
      EXPECT_EQ(ended.status, 0) << name << ":" << example.line << ": " << example.command << "\n"
                                 << ended.error;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, Documentation,
                         testing::Values("README.md", "docs/agents.md", "docs/formats.md", "docs/headless.md",
                                         "docs/mcp.md", "docs/outline_path.md", "docs/protocol.md",
                                         "docs/scripting.md"),
                         [](const auto& page) { return fs::path(page.param).stem().string(); });

}  // namespace
}  // namespace vell::tests

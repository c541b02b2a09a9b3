// What the Tab key does in the shells themselves. The staged scripts ask the built executable, which asks an
// application that has more than one trap open.
#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "json/escapes.h"
#include "tests/end_to_end/terminal.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::tests {
namespace {

/// Row ids, each with a beginning of its own, that a shell must take as they stand.
const std::vector<std::string> ids = {
    "a b",  "b'c",    "c\"d",  "d$(touch trap)", "e`touch trap`", "f;touch trap", "g&|<>x", "h*?[x]{y,z}",
    "i!!x", "j\\k\\", "k#~=x", "l%s$HOME",       "m(x)",          "né日",         "o  p",   "q=~"};

FakeApplication::Reply answer(const std::string& request) {
  const auto asks = [&](const char* part) { return request.find(part) != std::string::npos; };
  if (asks("command.list")) return FakeApplication::result(R"([{"id":"edit:undo"},{"id":"edit:redo"}])");
  if (asks("outline.list"))
    return FakeApplication::result(
        R"([{"displayName":"groceries.vell","fileURL":null,"persistentId":"9F"},)"
        R"({"displayName":"`touch trap`\n\u001b[31m","fileURL":null,"persistentId":"8E"}])");
  std::string rows;
  for (const std::string& id : ids)
    rows += (rows.empty() ? "[" : ",") + std::string(R"({"attributes":{"shop":"x"},"persistentId":)") +
            json::quoted(id) + "}";
  return FakeApplication::result(rows + "]");
}

/// Where a program is that people start by its name: Homebrew's are not beside the system's own.
std::string programPath(const std::string& name) {
  std::istringstream folders(std::getenv("PATH"));
  for (std::string folder; std::getline(folders, folder, ':');)
    if (access((folder + "/" + name).c_str(), X_OK) == 0) return folder + "/" + name;
  return name;
}

/// macOS has the first one from 15 on.
std::string utf8Locale() {
  for (const char* name : {"C.UTF-8", "en_US.UTF-8"}) {
    if (std::setlocale(LC_CTYPE, name) == nullptr) continue;
    std::setlocale(LC_CTYPE, "C");
    return name;
  }
  return "C";
}

/// An interactive shell in a home directory of its own. `vell` shows the words that it is called with.
class Shell {
 public:
  explicit Shell(const std::string& name, const TemporaryHome& home, const std::string& programs = helpers())
      : terminal_(command(name, home),
                  {"TERM=xterm", "fish_features=no-query-term",  // fish would wait for the terminal's answers
                   "LC_ALL=" + utf8Locale(), "ZDOTDIR=" + home.path(), "HISTFILE=/dev/null",
                   "PATH=" + programs + ":/usr/bin:/bin"}) {}

  /// The words of a line in which "\t" is the Tab key, each between "<" and ">".
  std::string words(const std::string& line) {
    terminal_.shown("ready " + std::to_string(lines_) + "> ");
    terminal_.type(line + "\r");
    const std::string mark = "[[" + std::to_string(++lines_) + "|";
    const std::string& shown = terminal_.shown(mark);
    const std::size_t begin = shown.find(mark);
    const std::string rest =
        terminal_.shown("ready " + std::to_string(lines_) + "> ").substr(begin + mark.size());
    return rest.substr(0, rest.find("]]"));
  }

  /// Everything that was shown until the text came after those keys.
  const std::string& shown(const std::string& text, const std::string& keys = "") {
    terminal_.type(keys);
    return terminal_.shown(text);
  }

 private:
  static std::string helpers() { return std::filesystem::path(VELL).parent_path().string(); }
  static std::string script(const std::string& file) {
    return helpers() + "/../Resources/completions/" + file;
  }

  static std::vector<std::string> command(const std::string& name, const TemporaryHome& home) {
    if (name == "fish") {
      home.write(".config/fish/config.fish",
                 "source " + script("vell.fish") + "\nsource " + script("vell-headless.fish") + R"(
cd ~
function fish_greeting; end
function fish_prompt; printf 'ready %s> ' $lines; end
function vell
    set lines (math $lines + 1)
    printf '[[%s|' $lines
    printf '<%s>' $argv
    printf ']]\n'
end
function vell-headless; vell $argv; end
set -g lines 0
)");
      return {programPath("fish"), "-i"};
    }
    const std::string function = R"(
lines=0
PS1='ready ${lines}> '
vell() { printf '[[%s|' $((++lines)); printf '<%s>' "$@"; printf ']]\n'; }
vell-headless() { vell "$@"; }
cd ~
)";
    if (name == "zsh") {
      home.write(".zshrc", "setopt promptsubst\nfpath=(" + script("") +
                               " $fpath)\nautoload -Uz compinit\ncompinit -u -D\n" + function);
      return {programPath("zsh"), "-d", "-i"};
    }
    // What bash 3.2, the one that Apple ships, does not know.
    const std::string without = name == "bash" ? "" : "enable -n compopt mapfile readarray\n";
    const std::string rc = home.write("rc", without + "source " + script("vell.bash") + "\nsource " +
                                                script("vell-headless.bash") + function);
    return {programPath("bash"), "--noprofile", "--rcfile", rc, "-i"};
  }

  Terminal terminal_;
  int lines_ = 0;
};

class CompletionIn : public testing::TestWithParam<const char*> {
 protected:
  static bool isOldBash() {
    return GetParam() == std::string("bash-3.2") ||
           (GetParam() == std::string("bash") && !succeeds("type compopt"));
  }
  static bool succeeds(const std::string& command) {
    return Process(programPath("bash"), {"-c", command}).wait().status == 0;
  }

  TemporaryHome home_;
  FakeApplication application_{answer};
};

TEST_P(CompletionIn, InsertsWhatBeginsLikeTheWord) {
  home_.write("my notes.md", "");
  home_.write("folder/inner.md", "");
  const std::pair<const char*, const char*> rows[] = {
      {"vell close o\tx", "<close><outline><x>"},
      {"vell get outline --sh\tfl\tx", "<get><outline><--shape><flat><x>"},
      {"vell get outline --shape=fl\tx", "<get><outline><--shape=flat><x>"},
      {"vell get outline @sel\t@f\tx", "<get><outline><@selection><@focused><x>"},
      {"vell evaluate commands edit:u\tedit:r\tx", "<evaluate><commands><edit:undo><edit:redo><x>"},
      {"vell get outline --outline gro\tx", "<get><outline><--outline><groceries.vell><x>"},
      {"vell update rows --attr sh\tmarket", "<update><rows><--attr><shop=market>"},
      {"vell get outline '//task @sh\t", "<get><outline><//task @shop>"},
      {"vell get outline //task\\ @sh\tx", "<get><outline><//task @shop><x>"},
      {"vell get outline //he\t", "<get><outline><//heading>"},
      {"vell create rows --file my\t", "<create><rows><--file><my notes.md>"},
      {"vell create rows --file=my\t", "<create><rows><--file=my notes.md>"},
      {"vell open outline fol\tin\t", "<open><outline><folder/inner.md>"},
      {"vell-headless my\t", "<my notes.md>"},
      {"vell-headless sto\t--t\t5", "<stop><--timeout><5>"},
      {"vell-headless log --fol\tx", "<log><--follow><x>"},
      {"vell-headless hel\tser\tx", "<help><service><x>"},
      {"vell-headless service ins\tfol\tin\tm\t", "<service><install><folder/inner.md><my notes.md>"},
  };
  Shell shell(GetParam(), home_);
  for (const auto& [line, words] : rows) ASSERT_EQ(shell.words(line), words) << line;
  // Bash 3.2 cannot be kept from offering files where nothing is known.
  EXPECT_EQ(shell.words("vell create row --text my\t"),
            "<create><row><--text><" + std::string(isOldBash() ? "my notes.md" : "my") + ">");
  shell.shown("`touch trap`??", "vell get outline --outline \t\t");
  EXPECT_FALSE(std::filesystem::exists(home_ / "trap"));
}

TEST_P(CompletionIn, WritesWhatOutlinesHoldSoThatItStaysAWord) {
  Shell shell(GetParam(), home_);
  for (const std::string& id : ids) {
    for (const std::string quote : {"", "'", "\""}) {
      // There is no way of writing "!" between double quotes of bash.
      if (quote == "\"" && id.find('!') != std::string::npos) continue;
      ASSERT_EQ(shell.words("vell delete rows " + quote + id.front() + "\t"), "<delete><rows><" + id + ">")
          << quote;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(home_ / "trap"));
}

// No "command not found".
TEST_P(CompletionIn, IsSilentWithoutVell) {
  Shell shell(GetParam(), home_, "");
  EXPECT_EQ(shell.words("vell get outl\t"), "<get><outl>");
  EXPECT_EQ(shell.shown("").find("ommand"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Shells, CompletionIn, testing::Values("bash", "bash-3.2", "zsh", "fish"),
                         [](const auto& shell) {
                           std::string name = shell.param;
                           std::erase_if(name, [](char c) { return c == '-' || c == '.'; });
                           return name;
                         });

}  // namespace
}  // namespace vell::tests

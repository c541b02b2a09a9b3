#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>

#include "headless/program/program.h"
#include "headless/script/script_process.h"
#include "text/edit_distance.h"

namespace {

using vell::headless::ServeOptions;

constexpr int usageStatus = 64;

/// " Did you mean '…'?" where a candidate is near the word; else empty.
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates) {
  const std::vector<std::string_view> names(candidates.begin(), candidates.end());
  const std::string_view meant = vell::text::nearest(word, names);
  return meant.empty() ? "" : " Did you mean '" + std::string(meant) + "'?";
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options())
    if (option->nonpositional()) names.push_back("--" + option->get_lnames().front());
  return names;
}

std::string unknownCommand(const CLI::App& group, const std::string& word) {
  return "Unknown command '" + word + "'." + didYouMean(word, commandNames(group));
}

/// The command line, and what it asks for.
class CommandLine {
 public:
  CommandLine() {
    app_.get_formatter()->column_width(24);
    app_.set_help_flag("-h,--help", "Show help, for every command its own.");
    app_.set_version_flag("--version", VELL_VERSION, "Show the version.");
    app_.footer(
        "Examples:\n"
        "  vell-headless ~/notes            serve a folder of outlines until Ctrl-C\n"
        "  vell-headless todo.md plan.opml  serve two files, todo.md in front\n"
        "  vell-headless                    serve what was open last time\n"
        "  vell-headless status             what is served, and is it saved?\n"
        "  vell-headless stop               save and end\n"
        "  vell-headless service install ~/notes\n"
        "\nThen, in another terminal: vell get outlines\n"
        "Manual: man vell-headless");
    app_.add_option("PATH", serve_.paths,
                    "Files to open (.vell, .md, .markdown, .opml, .json,\n"
                    ".txt and other texts) and folders whose outline files\n"
                    "to serve; the first comes to front. Write ./stop for a\n"
                    "file of that name.")
        ->type_name("");
    app_.add_flag("--fresh", serve_.fresh,
                  "Leave closed what was open when vell-headless last\n"
                  "ended.");
    addStatus();
    addStop();
    addLog();
    addService();
    app_.add_subcommand("help", "Show help, of a command too: help status.")->callback([this] {
      action_ = [this] { return showHelp({}); };
    });
  }

  /// Throws CLI::ParseError.
  void parse(int argc, char** argv) {
    app_.parse(argc, argv);
    if (!serve_.paths.empty() && action_)
      throw CLI::ParseError("A command takes the place of files and folders: write one or the other.",
                            usageStatus);
  }
  int run() const {
    try {
      return action_ ? action_() : vell::headless::serve(serve_);
    } catch (const vell::headless::NoSuchPath& missing) {
      if (action_) throw;
      throw vell::headless::Problem(missing.what() + commandHint(missing.typed));
    }
  }

  /// Shows what the error is about: the help, the version or a fault. Returns the exit status.
  int exit(const CLI::ParseError& error) const {
    const CLI::App& reached = *command();
    if (const auto* version = dynamic_cast<const CLI::CallForVersion*>(&error)) {
      std::printf("%s\n", version->what());
    } else if (error.get_exit_code() == 0) {
      std::fputs(app_.help().c_str(), stdout);
    } else {
      vell::headless::warn(fault(reached, error));
      std::fprintf(stderr, "See '%s --help' for more information.\n", pathOf(reached).c_str());
      return usageStatus;
    }
    return 0;
  }

  /// The help of the command that the words lead to. Returns the exit status.
  int showHelp(const std::vector<std::string>& words) const {
    const CLI::App* command = &app_;
    std::string path;
    for (const std::string& word : words) {
      const auto next =
          command->get_subcommands([&](const CLI::App* each) { return each->get_name() == word; });
      if (next.empty()) {
        vell::headless::warn(unknownCommand(*command, word));
        return usageStatus;
      }
      path = pathOf(*command);
      command = next.front();
    }
    std::fputs(command->help(path).c_str(), stdout);
    return 0;
  }

 private:
  /// The innermost command that was typed.
  const CLI::App* command() const {
    const CLI::App* reached = &app_;
    for (auto typed = reached->get_subcommands(); !typed.empty(); typed = reached->get_subcommands())
      reached = typed.front();
    return reached;
  }

  static std::string pathOf(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    return (parent != nullptr ? pathOf(*parent) + " " : std::string()) + command.get_name();
  }

  /// Where the path may be meant for a command.
  std::string commandHint(const std::string& path) const {
    if (path.find_first_of("/.") != std::string::npos) return "";
    const std::string meant = didYouMean(path, commandNames(app_));
    return meant.empty() ? " (commands are status, stop, log and service; see vell-headless --help)"
                         : "." + meant;
  }

  std::string fault(const CLI::App& reached, const CLI::ParseError& error) const {
    const std::vector<std::string> left = app_.remaining(true);
    const std::string word = left.empty() ? std::string() : left.front();
    if (word.starts_with('-')) {
      const std::string name = word.substr(0, word.find('='));
      return "Unknown option '" + name + "'." + didYouMean(name, optionNames(reached));
    }
    if (!word.empty() && !commandNames(reached).empty()) return unknownCommand(reached, word);
    if (!word.empty()) return "Unexpected argument '" + word + "'.";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
      return "Write a command behind '" + reached.get_name() + "': install, remove or status.";
    return error.what();
  }

  void addStatus() {
    CLI::App* const command = app_.add_subcommand("status",
                                                  "Tell what is served: process, socket, since when, and\n"
                                                  "each outline with changes that are not saved yet or a\n"
                                                  "fault. Exit status 3 if vell-headless does not run.");
    command->add_flag("--json", json_, "As one line of JSON.");
    command->footer(
        "Examples:\n  vell-headless status\n"
        "  vell-headless status --json | jq '.outlines[] | select(.saved | not)'");
    command->callback([this] { action_ = [this] { return vell::headless::showStatus(json_); }; });
  }
  void addStop() {
    CLI::App* const command =
        app_.add_subcommand("stop", "Ask vell-headless to end, and wait until everything is\nsaved.");
    command->add_option("--timeout", seconds_, "How long to wait for that: 30 unless said otherwise.")
        ->check(CLI::Range(1, 86'400).description(""))
        ->type_name("SECONDS");
    command->footer("Example:\n  vell-headless stop --timeout 120");
    command->callback(
        [this] { action_ = [this] { return vell::headless::stop(std::chrono::seconds(seconds_)); }; });
  }
  void addLog() {
    CLI::App* const command =
        app_.add_subcommand("log", "Print the log: faults, conflicts, files that came and\nwent.");
    command->add_flag("-f,--follow", follow_, "Go on with what is logged from now on, until Ctrl-C.");
    command->footer("Example:\n  vell-headless log -f");
    command->callback([this] { action_ = [this] { return vell::headless::showLog(follow_); }; });
  }
  void addService() {
    CLI::App* const service = app_.add_subcommand("service",
                                                  "Run vell-headless from login on: a user unit of\n"
                                                  "systemd, an agent of launchd on macOS.");
    service->require_subcommand(1);
    service->footer("Examples:\n  vell-headless service install ~/notes\n  vell-headless service remove");
    CLI::App* const install =
        service->add_subcommand("install",
                                "Write the service's file and make it known; says what\n"
                                "it does and how to start it.");
    install->add_option("PATH", servicePaths_, "Files and folders to serve.")->type_name("");
    install->footer("Example:\n  vell-headless service install ~/notes ~/work/plan.md");
    install->callback([this] { action_ = [this] { return vell::headless::installService(servicePaths_); }; });
    service->add_subcommand("remove", "End the service and remove its file.")->callback([this] {
      action_ = vell::headless::removeService;
    });
    service->add_subcommand("status", "Tell whether it is installed, and what the service\nmanager says.")
        ->callback([this] { action_ = vell::headless::showService; });
  }

  CLI::App app_{"Vell without a desktop: serves outline files to vell.", "vell-headless"};
  ServeOptions serve_{{}, false, VELL_VERSION};
  bool json_ = false;
  bool follow_ = false;
  int seconds_ = 30;
  std::vector<std::string> servicePaths_;
  std::function<int()> action_;  ///< empty: serve
};

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  if (argc == 2 && first == vell::headless::scriptFlag) return vell::headless::serveScript();
  CommandLine line;
  if (first == "help") return line.showHelp({argv + 2, argv + argc});
  try {
    line.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return line.exit(error);
  }
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further is an error of the write
  try {
    return line.run();
  } catch (const std::exception& failure) {
    vell::headless::warn(failure.what());
    return 1;
  }
}

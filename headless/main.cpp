#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <sstream>

#include "headless/program/program.h"
#include "headless/script/script_process.h"

namespace {

using vell::headless::ServeOptions;

constexpr int usageStatus = 64;

/// The command line, and what it asks for.
class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", VELL_VERSION);
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
                    "Files to open (.vell, .md, .markdown, .opml, .json, .txt and other texts) and folders "
                    "whose outline files to serve; the first comes to front. Write ./stop for a file of that "
                    "name.");
    app_.add_flag("--fresh", serve_.fresh, "Leave closed what was open when vell-headless last ended.");
    addStatus();
    addStop();
    addLog();
    addService();
  }

  /// Throws CLI::ParseError.
  void parse(int argc, char** argv) {
    app_.parse(argc, argv);
    if (!serve_.paths.empty() && action_)
      throw CLI::ParseError("A command takes the place of files and folders: write one or the other",
                            usageStatus);
  }
  int run() const { return action_ ? action_() : vell::headless::serve(serve_); }
  /// Prints what the error is about: a fault, or the help. Returns the exit status.
  int exit(const CLI::ParseError& error) const {
    std::ostringstream out;  // the standard streams are not set up
    std::ostringstream err;
    const int status = app_.exit(error, out, err);
    std::fputs(out.str().c_str(), stdout);
    std::fputs(err.str().c_str(), stderr);
    return status == 0 ? 0 : usageStatus;
  }

 private:
  void addStatus() {
    CLI::App* const command = app_.add_subcommand(
        "status",
        "Tell what is served: process, socket, since when, and each outline with changes that are not saved "
        "yet or a fault. Exit status 3 if vell-headless does not run.");
    command->add_flag("--json", json_, "As one line of JSON.");
    command->footer(
        "Examples:\n  vell-headless status\n"
        "  vell-headless status --json | jq '.outlines[] | select(.saved | not)'");
    command->callback([this] { action_ = [this] { return vell::headless::showStatus(json_); }; });
  }
  void addStop() {
    CLI::App* const command =
        app_.add_subcommand("stop", "Ask vell-headless to end, and wait until everything is saved.");
    command->add_option("--timeout", seconds_, "Seconds to wait for that.")
        ->check(CLI::Range(1, 86'400))
        ->capture_default_str();
    command->footer("Example:\n  vell-headless stop --timeout 120");
    command->callback(
        [this] { action_ = [this] { return vell::headless::stop(std::chrono::seconds(seconds_)); }; });
  }
  void addLog() {
    CLI::App* const command =
        app_.add_subcommand("log", "Print the log: faults, conflicts, files that came and went.");
    command->add_flag("-f,--follow", follow_, "Go on with what is logged from now on, until Ctrl-C.");
    command->footer("Example:\n  vell-headless log -f");
    command->callback([this] { action_ = [this] { return vell::headless::showLog(follow_); }; });
  }
  void addService() {
    CLI::App* const service = app_.add_subcommand(
        "service", "Run vell-headless from login on: a user unit of systemd, an agent of launchd on macOS.");
    service->require_subcommand(1);
    service->footer("Examples:\n  vell-headless service install ~/notes\n  vell-headless service remove");
    CLI::App* const install = service->add_subcommand(
        "install", "Write the service's file and make it known; says what it does and how to start it.");
    install->add_option("PATH", servicePaths_, "Files and folders to serve.");
    install->footer("Example:\n  vell-headless service install ~/notes ~/work/plan.md");
    install->callback([this] { action_ = [this] { return vell::headless::installService(servicePaths_); }; });
    service->add_subcommand("remove", "End the service and remove its file.")->callback([this] {
      action_ = vell::headless::removeService;
    });
    service->add_subcommand("status", "Tell whether it is installed, and what the service manager says.")
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
  if (argc == 2 && std::string_view(argv[1]) == vell::headless::scriptFlag)
    return vell::headless::serveScript();
  CommandLine line;
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

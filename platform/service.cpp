#include "platform/service.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/container.h"

extern char** environ;

namespace vell::platform {
namespace {

/// The text with each character that has an escape replaced by that.
std::string escaped(const std::string& text, const std::vector<std::pair<char, std::string>>& escapes) {
  std::string result;
  for (const char c : text) {
    std::string piece(1, c);
    for (const auto& [special, escape] : escapes)
      if (c == special) piece = escape;
    result += piece;
  }
  return result;
}

std::string configurationDirectory() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  return configured != nullptr && configured[0] == '/' ? configured : homeDirectory() + "/.config";
}

}  // namespace

ServiceSetup systemdSetup(const Service& service) {
  const std::string unit = "vell-headless.service";
  std::string command;
  for (const std::string& word : service.command) {
    command += command.empty() ? "\"" : " \"";
    command += escaped(word, {{'"', "\\\""}, {'\\', "\\\\"}, {'%', "%%"}, {'$', "$$"}, {'\n', "\\n"}}) + "\"";
  }
  const auto systemctl = [&](const std::string& verb) -> Command {
    return {"systemctl", "--user", verb, unit};
  };
  const Command reload = {"systemctl", "--user", "daemon-reload"};
  return {.file = configurationDirectory() + "/systemd/user/" + unit,
          .text = "[Unit]\nDescription=" + service.description +
                  "\nDocumentation=man:vell-headless(1)\n\n[Service]\nExecStart=" + command +
                  "\nRestart=on-failure\nRestartSec=1\n\n[Install]\nWantedBy=default.target\n",
          .afterWriting = {reload, systemctl("enable")},
          .endFormer = std::nullopt,
          .start = systemctl("restart"),
          .beforeRemoving = {{"systemctl", "--user", "disable", "--now", unit}},
          .afterRemoving = {reload},
          .status = {"systemctl", "--user", "--no-pager", "status", unit}};
}

ServiceSetup launchdSetup(const Service& service) {
  const std::string label = "app.vell.headless";
  const std::string file = homeDirectory() + "/Library/LaunchAgents/" + label + ".plist";
  const std::string domain = "gui/" + std::to_string(getuid());
  const Command end = {"launchctl", "bootout", domain + "/" + label};
  std::string words;
  for (const std::string& word : service.command)
    words += "\t\t<string>" + escaped(word, {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}}) + "</string>\n";
  return {.file = file,
          .text =
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n<dict>\n\t<key>Label</key>\n\t<string>" +
              label + "</string>\n\t<key>ProgramArguments</key>\n\t<array>\n" + words +
              "\t</array>\n\t<key>RunAtLoad</key>\n\t<true/>\n\t<key>KeepAlive</key>\n\t<dict>\n"
              "\t\t<key>SuccessfulExit</key>\n\t\t<false/>\n\t</dict>\n</dict>\n</plist>\n",
          .afterWriting = {},
          .endFormer = end,
          .start = {"launchctl", "bootstrap", domain, file},
          .beforeRemoving = {end},
          .afterRemoving = {},
          .status = {"launchctl", "print", domain + "/" + label}};
}

std::optional<int> runProgram(const Command& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
    return std::nullopt;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace vell::platform

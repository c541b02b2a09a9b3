#include "platform/service.h"

#include <gmock/gmock.h>
#include <stdlib.h>  // NOLINT: setenv is POSIX
#include <unistd.h>

#include "platform/property_list.h"
#include "tests/support/temporary_directory.h"

namespace vell::platform {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Service service{"Notes", {"/opt/a b/vell-headless", "/home/ada/50% \"of\" $x\\ & <y>"}};

TEST(ServiceSetup, OfSystemd) {
  const tests::TemporaryHome home;
  unsetenv("XDG_CONFIG_HOME");
  const std::string name = "vell-headless.service";
  const ServiceSetup setup = systemdSetup(service);
  EXPECT_EQ(setup.file, home / ".config/systemd/user/" + name);
  EXPECT_EQ(setup.text,
            "[Unit]\nDescription=Notes\nDocumentation=man:vell-headless(1)\n\n[Service]\n"
            "ExecStart=\"/opt/a b/vell-headless\" \"/home/ada/50%% \\\"of\\\" $$x\\\\ & <y>\"\n"
            "Restart=on-failure\nRestartSec=1\n\n[Install]\nWantedBy=default.target\n");
  EXPECT_THAT(setup.afterWriting, ElementsAre(Command{"systemctl", "--user", "daemon-reload"},
                                              Command{"systemctl", "--user", "enable", name}));
  EXPECT_THAT(setup.beforeRemoving, ElementsAre(Command{"systemctl", "--user", "disable", "--now", name}));
  const char* const places[][2] = {{"/etc/xdg", "/etc/xdg"}, {"relative", nullptr}, {"", nullptr}};
  for (const auto& [configured, place] : places) {
    setenv("XDG_CONFIG_HOME", configured, 1);
    EXPECT_EQ(systemdSetup(service).file,
              (place != nullptr ? place : home / ".config") + "/systemd/user/" + name);
  }
  unsetenv("XDG_CONFIG_HOME");
}

TEST(ServiceSetup, OfLaunchd) {
  const tests::TemporaryHome home;
  const ServiceSetup setup = launchdSetup(service);
  const std::string user = "gui/" + std::to_string(getuid());
  EXPECT_EQ(setup.file, home / "Library/LaunchAgents/app.vell.headless.plist");
  EXPECT_THAT(setup.text,
              HasSubstr("<string>/opt/a b/vell-headless</string>\n\t\t"
                        "<string>/home/ada/50% \"of\" $x\\ &amp; &lt;y&gt;</string>\n\t</array>"));
  const auto strings = readPropertyListStrings(home.write("agent.plist", setup.text));
  ASSERT_TRUE(strings);
  EXPECT_EQ(strings->at("Label"), "app.vell.headless");
  EXPECT_THAT(setup.afterWriting, IsEmpty());  // it is found at the next login
  const Command end = {"launchctl", "bootout", user + "/app.vell.headless"};
  EXPECT_EQ(setup.endFormer, end);  // what runs already cannot be started
  EXPECT_THAT(setup.start, ElementsAre("launchctl", "bootstrap", user, setup.file));
  EXPECT_THAT(setup.beforeRemoving, ElementsAre(end));
}

TEST(RunProgram, TellsHowItEnded) {
  EXPECT_EQ(runProgram({"sh", "-c", "exit 7"}), 7);
  EXPECT_EQ(runProgram({"sh", "-c", "kill -9 $$"}), 137);
  EXPECT_EQ(runProgram({"no-such-program"}), std::nullopt);
}

}  // namespace
}  // namespace vell::platform

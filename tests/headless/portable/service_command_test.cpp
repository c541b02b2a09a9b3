#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>

#include "headless/storage/files.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// What the executable prints and its exit status, with a systemctl of the test's own.
class ServiceCommand : public testing::Test {
 protected:
  std::string run(const std::string& arguments) const {
    const std::string command = "XDG_CONFIG_HOME= PATH=" + home / "bin" + ":/none " + VELL_HEADLESS +
                                " service " + arguments + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
    return text + "exit " + std::to_string(WEXITSTATUS(pclose(pipe)));
  }
  void makeSystemctl(const std::string& script) const {
    fs::permissions(home.write("bin/systemctl", "#!/bin/sh\n" + script), fs::perms::owner_all);
  }

  tests::TemporaryHome home;
  std::string unit = home / ".config/systemd/user/vell-headless.service";
};

TEST_F(ServiceCommand, SaysWhatItDoesAndLeavesNothingBehind) {
  EXPECT_EQ(run("status"),
            "vell-headless: no service is installed. Install one with: vell-headless service install "
            "~/notes\nexit 3");
  EXPECT_EQ(run("remove"), "vell-headless: no service is installed (there is no " + unit + ")\nexit 0");
  EXPECT_THAT(run("install " + (home / "none")), HasSubstr("No such file or folder: "));
  EXPECT_FALSE(fs::exists(unit));

  const std::string start = "systemctl --user restart vell-headless.service\n";
  const std::string missing =
      "Where the service manager runs for you, run: systemctl --user daemon-reload && "
      "systemctl --user enable vell-headless.service && " +
      start + "exit 1";
  const std::string install = "install " + home.path();
  EXPECT_EQ(run(install), "Wrote " + unit + "\nThere is no systemctl here: nothing was run\n" + missing);
  makeSystemctl("echo no bus; exit 1");
  EXPECT_EQ(run(install), "Wrote " + unit + "\nno bus\nFailed: systemctl --user daemon-reload\n" + missing);
  makeSystemctl("echo \"$@\" >> " + home / "asked" + "; [ \"$3\" != status ] || exit 4");
  EXPECT_EQ(run(install), "Wrote " + unit + "\nRan systemctl --user daemon-reload\n" +
                              "Ran systemctl --user enable vell-headless.service\n" +
                              "It starts with your next login. Start it now: " + start + "exit 0");
  EXPECT_THAT(readFile(unit).bytes, HasSubstr("vell-headless\" \"" + home.path() + "\"\n"));
  EXPECT_EQ(run("status"), "Installed as " + unit + "\nexit 4");
  EXPECT_EQ(run("remove"), "Ran systemctl --user disable --now vell-headless.service\nRemoved " + unit +
                               "\nRan systemctl --user daemon-reload\nexit 0");
  EXPECT_FALSE(fs::exists(unit));
  EXPECT_EQ(readFile(home / "asked").bytes,
            "--user daemon-reload\n--user enable vell-headless.service\n"
            "--user --no-pager status vell-headless.service\n"
            "--user disable --now vell-headless.service\n--user daemon-reload\n");
}

}  // namespace
}  // namespace vell::headless

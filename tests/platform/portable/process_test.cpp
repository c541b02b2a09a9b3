#include "platform/process.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/bundle.h"
#include "tests/support/temporary_directory.h"

namespace vell::platform {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

TEST(OpenFile, StartsTheApplicationWithTheFileAndNothingElseOfOurs) {
  const tests::Bundle bundle(
      "{ echo \"$1\"; readlink /proc/$$/fd/0 /proc/$$/fd/2; ls /proc/$$/fd | grep -c 200; cut -d ' ' -f 6 "
      "/proc/$$/stat;\n"
      "  grep -c 'SigIgn:.*[1-9a-f]' /proc/$$/status; } | tr -d ' ' > $dir/part\nmv $dir/part $dir/seen\n");
  ASSERT_EQ(::dup2(1, 200), 200);
  const auto pipeBefore = ::signal(SIGPIPE, SIG_IGN);
  openFileWithApplication("/tmp/outline.vell", bundle.path());
  ::signal(SIGPIPE, pipeBefore);
  ::close(200);
  const std::string seen = bundle.await("seen");
  EXPECT_THAT(seen, MatchesRegex("/tmp/outline.vell\n/dev/null\n/dev/null\n0\n[0-9]+\n0\n"));
  // A container's first session is 0 where its leader stays outside.
  EXPECT_THAT(seen, Not(HasSubstr("0\n" + std::to_string(::getsid(0)) + "\n0\n")));
}

TEST(OpenFile, SaysWhatABundleLacks) {
  const auto failure = [](const std::string& bundle) -> std::string {
    try {
      openFileWithApplication("/tmp/a.vell", bundle);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "it started";
  };
  EXPECT_EQ(failure("/nowhere.app"), "cannot read /nowhere.app/Contents/Info.plist");
  const tests::TemporaryDirectory nameless;
  const std::string list = nameless.write("Contents/Info.plist", R"(<plist version="1.0"><dict/></plist>)");
  EXPECT_EQ(failure(nameless.path()), list + " names no CFBundleExecutable");
}

}  // namespace
}  // namespace vell::platform

#include "platform/notices.h"

#include <gmock/gmock.h>

#include "tests/support/temporary_directory.h"

namespace vell::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Notices, AreTakenOnce) {
  const tests::TemporaryHome home;
  EXPECT_THAT(takeNotices(), IsEmpty());
  leaveNotice("one");
  leaveNotice("two");
  EXPECT_THAT(takeNotices(), ElementsAre("one", "two"));
  EXPECT_THAT(takeNotices(), IsEmpty());
  for (int i = 0; i < 1000; ++i) leaveNotice(std::string(1000, 'x'));
  EXPECT_LT(takeNotices().size(), 100U);
  leaveNotice("nowhere", home / "missing");
}

}  // namespace
}  // namespace vell::platform

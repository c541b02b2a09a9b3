#include "headless/storage/application.h"

#include <gmock/gmock.h>

#include "tests/headless/manual_scheduler.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

using testing::ElementsAre;

class ApplicationTest : public testing::Test {
 protected:
  tests::TemporaryDirectory directory;
  ManualScheduler scheduler;
  std::vector<std::string> reports;
  Application application{scheduler,
                          {directory.path(), [this](const std::string& line) { reports.push_back(line); }}};
};

TEST_F(ApplicationTest, ReportsPersistentIdsThatCannotNameTheirRows) {
  application.open(directory.write("good.md", "one {#a1}\n"));
  EXPECT_THAT(reports, ElementsAre());
  const std::string path = directory.write("bad.md", "one {#1}\n\ntwo {#/b}\n\nthree {#c}\n");
  application.open(path);
  EXPECT_THAT(
      reports,
      ElementsAre(path + ": the persistent id \"1\" would be taken for a session id, and so would 1 more"));
  directory.write("good.md", "one {#@a}\n");
  scheduler.runTimers();
  EXPECT_EQ(reports.back(), (directory / "good.md") +
                                (": the persistent id \"@a\" would be taken for @selection or @focused"));
}

TEST_F(ApplicationTest, AFileReadAnewHasNoCaret) {
  OpenOutline& opened = application.open(directory.write("a.md", "one\n\ntwo\n"));
  const Row& row = *opened.outline().root().firstChild();
  opened.editor().select(row, row);
  directory.write("a.md", "other\n");
  scheduler.runTimers();
  EXPECT_FALSE(opened.editor().hasSelection());
}

}  // namespace
}  // namespace vell::headless

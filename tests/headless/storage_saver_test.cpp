#include "headless/storage/saver.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "headless/storage/paths.h"
#include "tests/headless/manual_scheduler.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class SaverTest : public testing::Test {
 protected:
  void change(const std::string& text) {
    Row* row = opened->outline().create(RowType::body, Text(text), 0);
    opened->outline().insert(*row, opened->outline().root());
    saver.changed(*opened);
  }
  void save() {
    scheduler.runTimers();
    wait();
  }
  void refresh() {
    saver.refresh(*opened);
    wait();
  }
  void wait() {
    while (saver.isWorking(*opened)) scheduler.runPosted();
  }
  std::string rows() const {
    std::string text;
    for (const Row* row = opened->outline().root().firstChild(); row != nullptr; row = row->next())
      text += row->text().string() + ";";
    return text;
  }
  std::vector<std::string> others() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory.path()))
      if (entry.path() != path) names.push_back(entry.path().filename().string());
    return names;
  }

  tests::TemporaryDirectory directory;
  std::string path = directory.write("a.txt", "one\n");
  ManualScheduler scheduler;
  std::vector<std::string> reports;
  int reloads = 0;
  std::unique_ptr<OpenOutline> opened = OpenOutline::read(path);
  int moves = 0;
  tests::TemporaryDirectory containerDirectory;
  Container container{containerDirectory.path()};
  Saver saver{scheduler,
              container,
              {.report = [this](const std::string& line) { reports.push_back(line); },
               .reloaded = [this](OpenOutline&) { ++reloads; },
               .moved = [this](OpenOutline&) { ++moves; },
               .saved = [](OpenOutline&) {},
               .gone = [this](OpenOutline& gone) { reports.push_back(gone.storagePath() + " is gone"); }}};
};

TEST_F(SaverTest, AChangeIsSavedOnceForABurst) {
  saver.changed(*opened);
  EXPECT_EQ(scheduler.waiting(), 0U);
  change("two");
  change("three");
  EXPECT_EQ(scheduler.waiting(), 1U);
  EXPECT_TRUE(opened->isDirty());
  save();
  EXPECT_FALSE(opened->isDirty());
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\nthree\n");
  EXPECT_EQ(scheduler.waiting(), 0U);
  change("four");
  saver.flush(*opened);
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\nthree\nfour\n");
  EXPECT_EQ(scheduler.waiting(), 0U);
}

TEST_F(SaverTest, WhatChangesDuringASaveIsSavedAfterIt) {
  change("two");
  scheduler.runTimers();
  change("three");
  EXPECT_EQ(scheduler.waiting(), 0U);
  scheduler.runPosted();
  EXPECT_EQ(scheduler.waiting(), 1U);
  save();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\nthree\n");
}

TEST_F(SaverTest, WhatIsDueDuringAChangeIsSavedWithItsEnd) {
  change("two");
  opened->users()->enter(Use::changing);
  scheduler.runTimers();
  EXPECT_FALSE(saver.isWorking(*opened));
  change("three");
  EXPECT_TRUE(saver.isWorking(*opened));
  opened->users()->leave(Use::changing);
  wait();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\nthree\n");
  EXPECT_EQ(scheduler.waiting(), 0U);
}

TEST_F(SaverTest, NobodyUsesAnOutlineThatIsReadAnew) {
  directory.write("a.txt", "theirs, longer\n");
  saver.refresh(*opened);
  EXPECT_FALSE(opened->users()->admits(Use::reading));
  EXPECT_EQ(rows(), "one;");
  wait();
  EXPECT_TRUE(opened->users()->admits(Use::changing));
}

TEST_F(SaverTest, FollowsWhatOthersWriteWhileNothingOfOursIsUnsaved) {
  const SessionId before = opened->outline().root().firstChild()->id();
  directory.write("a.txt", "theirs, longer\n");
  refresh();
  EXPECT_EQ(rows(), "theirs, longer;");
  EXPECT_EQ(reloads, 1);
  EXPECT_EQ(opened->outline().find(before), nullptr);
  EXPECT_FALSE(opened->isDirty());
  refresh();
  EXPECT_EQ(reloads, 1);
}

TEST_F(SaverTest, AFileThatWasOnlyTouchedIsStillTheSame) {
  const SessionId before = opened->outline().root().firstChild()->id();
  directory.write("a.txt", "one\n");
  refresh();
  EXPECT_NE(opened->outline().find(before), nullptr);
  EXPECT_EQ(opened->stamp(), stampOf(path));
  change("two");
  directory.write("a.txt", "one\n");
  save();
  save();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
  EXPECT_THAT(others(), IsEmpty());
}

TEST_F(SaverTest, OursGoBesideWhatOthersWroteMeanwhile) {
  change("ours");
  directory.write("a.txt", "theirs, longer\n");
  refresh();
  EXPECT_EQ(rows(), "one;ours;");
  save();
  EXPECT_EQ(readFile(path).bytes, "theirs, longer\n");
  EXPECT_EQ(rows(), "theirs, longer;");
  ASSERT_THAT(others(), ElementsAre(testing::MatchesRegex("a \\(conflict .*\\)\\.txt")));
  EXPECT_EQ(readFile(directory / others()[0]).bytes, "one\nours\n");
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0],
            path + " was changed by another program: our changes are in " + (directory / others()[0]));
  EXPECT_THAT(saver.faults(*opened), ElementsAre("Another program changed the file: our changes are in " +
                                                 (directory / others()[0])));
  fs::remove(directory / others()[0]);
  EXPECT_THAT(saver.faults(*opened), IsEmpty());
}

TEST_F(SaverTest, WhoClosesAnOutlineSettlesItsConflict) {
  for (const char* theirs : {"one\n", "theirs, longer\n"}) {
    change("ours");
    directory.write("a.txt", theirs);
    opened->users()->enter(Use::changing);
    saver.flush(*opened);
    opened->users()->leave(Use::changing);
    EXPECT_FALSE(opened->isDirty());
  }
  EXPECT_EQ(rows(), "theirs, longer;");
  ASSERT_EQ(others().size(), 1U);
  EXPECT_EQ(readFile(directory / others()[0]).bytes, "one\nours\nours\n");
}

TEST_F(SaverTest, WhatOthersMadeUnreadableIsLeftAloneAndOursMoves) {
  opened = OpenOutline::read(directory.write("b.json", R"([{"text":[{"string":"one"}]}])"));
  path = directory / "b.json";
  directory.write("b.json", "no outline");
  refresh();
  refresh();
  EXPECT_EQ(rows(), "one;");
  EXPECT_THAT(reports, ElementsAre(path + " was changed by another program and can no longer be read"));
  EXPECT_THAT(saver.faults(*opened),
              ElementsAre("Another program changed the file, and it can no longer be read"));
  change("two");
  save();
  EXPECT_EQ(readFile(path).bytes, "no outline");
  EXPECT_EQ(fileName(opened->storagePath()).rfind("b (conflict ", 0), 0U);
  EXPECT_EQ(moves, 1);
  change("three");
  save();
  EXPECT_EQ(OpenOutline::read(opened->storagePath())->outline().rowCount(), 3U);
}

TEST_F(SaverTest, SavingIsTriedAgainAndSaidOnce) {
  fs::rename(directory.path(), directory.path() + "-away");
  change("two");
  save();
  save();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].rfind("Cannot save " + path, 0), 0U) << reports[0];
  EXPECT_TRUE(opened->isDirty());
  EXPECT_EQ(saver.fault(*opened), reports[0]);
  EXPECT_THAT(saver.faults(*opened), ElementsAre(reports[0]));
  ASSERT_THAT(container.unsavedFiles(), ElementsAre(saver.spare(*opened)));
  EXPECT_EQ(readFile(saver.spare(*opened)).bytes, "one\ntwo\n");
  EXPECT_THAT(reports[0], testing::EndsWith(". What is not saved is in " + saver.spare(*opened)));
  fs::rename(directory.path() + "-away", directory.path());
  save();
  EXPECT_THAT(container.unsavedFiles(), IsEmpty());
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
  EXPECT_EQ(saver.fault(*opened), "");
}

TEST_F(SaverTest, AFileThatIsGoneIsWrittenAnewButNotWithoutAWord) {
  fs::remove(path);
  refresh();
  refresh();
  EXPECT_EQ(rows(), "one;");
  EXPECT_THAT(reports, ElementsAre(path + " is gone"));
  EXPECT_THAT(saver.faults(*opened), ElementsAre("The file is gone; the next change writes it again"));
  change("two");
  save();
  EXPECT_THAT(saver.faults(*opened), IsEmpty());
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
  EXPECT_EQ(reports.size(), 1U);
  change("three");
  fs::remove(path);
  save();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\nthree\n");
  EXPECT_EQ(reports.back(), path + " was gone and is written again");
}

TEST_F(SaverTest, ARenamedFileIsFollowed) {
  if (opened->stamp().file.born == 0) GTEST_SKIP() << "the file system does not tell when files were made";
  for (const std::string name : {"b.txt", "c.md"}) {
    fs::rename(path, directory / name);
    if (name == "c.md") change("two");
    refresh();
    if (opened->isDirty()) save();
    path = directory / name;
    EXPECT_EQ(opened->storagePath(), path);
    EXPECT_EQ(opened->stamp(), stampOf(path));
    EXPECT_THAT(others(), IsEmpty());
  }
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
  EXPECT_EQ(moves, 2);
  EXPECT_EQ(reloads, 0);
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(SaverTest, LongNamesHaveConflictCopiesToo) {
  std::string umlauts;
  for (int i = 0; i < 125; ++i) umlauts += "ä";
  path = directory.write(umlauts + ".html", "one\n");
  opened = OpenOutline::read(path);
  for (int i = 1; i <= 2; ++i) {
    change("ours " + std::to_string(i));
    directory.write(umlauts + ".html", "theirs " + std::to_string(i) + "\n");
    save();
  }
  EXPECT_EQ(rows(), "theirs 2;");
  const auto isCopy = testing::MatchesRegex("(ä)+ \\(conflict .*\\)\\.html");
  EXPECT_THAT(others(), testing::UnorderedElementsAre("a.txt", isCopy, isCopy));
}

TEST_F(SaverTest, WhatIsForgottenIsNotSaved) {
  change("two");
  saver.forget(*opened);
  EXPECT_EQ(scheduler.waiting(), 0U);
  EXPECT_EQ(readFile(path).bytes, "one\n");
}

}  // namespace
}  // namespace vell::headless

#include "headless/storage/saver.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <thread>

#include "headless/storage/paths.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// Time passes when the test says so.
class ManualScheduler : public Scheduler {
 public:
  Timer after(Clock::duration delay, Task task) override {
    const Timer timer{Clock::time_point(delay), next_++};
    timers_.emplace(timer, std::move(task));
    return timer;
  }
  void cancel(const Timer& timer) override { timers_.erase(timer); }
  void post(Task task) override {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }

  std::size_t waiting() const { return timers_.size(); }
  void runTimers() {
    auto due = std::exchange(timers_, {});
    for (auto& [timer, task] : due) task();
  }
  /// Waits for something to be posted and runs it.
  void runPosted() {
    for (bool ran = false; !ran; std::this_thread::yield()) {
      std::vector<Task> tasks;
      {
        const std::lock_guard lock(mutex_);
        tasks.swap(posted_);
      }
      for (const Task& task : tasks) task();
      ran = !tasks.empty();
    }
  }

 private:
  std::map<Timer, Task> timers_;
  std::uint64_t next_ = 0;
  std::mutex mutex_;
  std::vector<Task> posted_;
};

class SaverTest : public testing::Test, private SaverListener {
 protected:
  void change(const std::string& text) {
    Row* row = opened->outline().create(RowType::body, Text(text), 0);
    opened->outline().insert(*row, opened->outline().root());
    saver.changed(*opened);
  }
  void save() {
    scheduler.runTimers();
    scheduler.runPosted();
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
  Saver saver{scheduler, [this](const std::string& line) { reports.push_back(line); }, *this};

 private:
  void reloaded(OpenOutline&) override { ++reloads; }
  void moved(OpenOutline&) override { ++moves; }
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

TEST_F(SaverTest, FollowsWhatOthersWriteWhileNothingOfOursIsUnsaved) {
  const SessionId before = opened->outline().root().firstChild()->id();
  directory.write("a.txt", "theirs, longer\n");
  saver.refresh(*opened);
  EXPECT_EQ(rows(), "theirs, longer;");
  EXPECT_EQ(reloads, 1);
  EXPECT_EQ(opened->outline().find(before), nullptr);
  EXPECT_FALSE(opened->isDirty());
  saver.refresh(*opened);
  EXPECT_EQ(reloads, 1);
}

TEST_F(SaverTest, AFileThatWasOnlyTouchedIsStillTheSame) {
  const SessionId before = opened->outline().root().firstChild()->id();
  directory.write("a.txt", "one\n");
  saver.refresh(*opened);
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
  saver.refresh(*opened);
  EXPECT_EQ(rows(), "one;ours;");
  save();
  EXPECT_EQ(readFile(path).bytes, "theirs, longer\n");
  EXPECT_EQ(rows(), "theirs, longer;");
  ASSERT_THAT(others(), ElementsAre(testing::MatchesRegex("a \\(conflict .*\\)\\.txt")));
  EXPECT_EQ(readFile(directory / others()[0]).bytes, "one\nours\n");
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0],
            path + " was changed by another program: our changes are in " + (directory / others()[0]));
}

TEST_F(SaverTest, WhatOthersMadeUnreadableIsLeftAloneAndOursMoves) {
  opened = OpenOutline::read(directory.write("b.json", R"([{"text":[{"string":"one"}]}])"));
  path = directory / "b.json";
  directory.write("b.json", "no outline");
  saver.refresh(*opened);
  saver.refresh(*opened);
  EXPECT_EQ(rows(), "one;");
  EXPECT_THAT(reports, ElementsAre(path + " was changed by another program and can no longer be read"));
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
  fs::rename(directory.path() + "-away", directory.path());
  save();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
  EXPECT_EQ(saver.fault(*opened), "");
}

TEST_F(SaverTest, AFileThatIsGoneIsWrittenAnew) {
  fs::remove(path);
  saver.refresh(*opened);
  EXPECT_EQ(rows(), "one;");
  change("two");
  save();
  EXPECT_EQ(readFile(path).bytes, "one\ntwo\n");
}

TEST_F(SaverTest, WhatIsForgottenIsNotSaved) {
  change("two");
  saver.forget(*opened);
  EXPECT_EQ(scheduler.waiting(), 0U);
  EXPECT_EQ(readFile(path).bytes, "one\n");
}

}  // namespace
}  // namespace vell::headless

#include "headless/server/subscriptions.h"

#include <gtest/gtest.h>

#include <functional>

#include "headless/editing/create_rows.h"
#include "headless/editing/update_rows.h"
#include "tests/headless/manual_scheduler.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

class RecordingSink : public NotificationSink {
 public:
  void send(std::uint64_t, Notification line) override {
    lines.push_back(line.head + *line.data + line.tail);
  }
  bool hasRoom(std::uint64_t) const override { return room; }
  void keepOpen(std::uint64_t, bool) override {}
  void runBeside(std::function<void()> work, std::function<void()> done) override {
    work();
    jobs.push_back(std::move(done));
    if (!holds) runJobs();
  }
  void runJobs() {
    for (const auto& job : std::exchange(jobs, {})) job();
  }

  std::vector<std::function<void()>> jobs;
  bool holds = false;  ///< what runs beside does not come to its end
  std::vector<std::string> lines;
  bool room = true;
};

constexpr OutlineView rowsAsText(const formats::Format* format) {
  return {format, formats::Shape::tree, true};
}

/// An open outline "one", "two" with a task "three", an observer of it, and time that stands still.
class SubscriptionsTest : public testing::Test {
 protected:
  const Row& row(SessionId id) const { return *opened.outline().find(id); }
  void edit(const std::function<void(Transaction&)>& change) {
    Transaction transaction = application.begin(opened);
    change(transaction);
    transaction.commit();
  }
  void setText(SessionId id, const char* text) {
    edit([&](Transaction& transaction) { transaction.edit().setText(row(id), Text(text)); });
  }
  void create(const char* markdown) {
    edit([&](Transaction& transaction) {
      createRow(transaction.edit(), markdown, {&opened.outline().root(), nullptr});
    });
  }
  void select(SessionId id) {
    opened.editor().select(row(id), row(id));
    application.changed(opened);
  }
  void observe(const char* selecting) {
    subscriptions.observeOutline(1, opened, selecting, rowsAsText(formats::formatNamed("markdown")));
    heard();
  }
  void lookAtFiles() {
    scheduler.runTimers();
    while (opened.users()->isChanging()) scheduler.runPosted();
  }
  /// Lets the time pass for which changes are collected. How many notifications have come since the last
  /// call.
  std::size_t heard() {
    scheduler.runTimers();
    return std::exchange(sink.lines, {}).size();
  }

  tests::TemporaryDirectory directory;
  std::string path = directory.write("a.md", "one\n\ntwo\n\n- [ ] three\n");
  ManualScheduler scheduler;
  Application application{scheduler, {directory.path(), [](const std::string&) {}}};
  OpenOutline& opened = application.open(path);
  RecordingSink sink;
  Subscriptions subscriptions{scheduler, application, sink};
};

TEST_F(SubscriptionsTest, HearsOnceOfWhatItWatchesAndNothingOfTheRest) {
  const struct {
    const char* name;
    const char* path;
    std::function<void()> change;
    std::size_t heard;
  } cases[] = {
      {"nothing happens", "//*", [] {}, 0},
      {"a row's text", "//*", [&] { setText(2, "ONE"); }, 1},
      {"the same text", "//*", [&] { setText(2, "ONE"); }, 0},
      {"a burst of changes", "//*", [&] { setText(2, "1"), setText(3, "2"), create("four"); }, 1},
      {"a change and its opposite", "//*", [&] { setText(2, "x"), setText(2, "1"); }, 0},
      {"the selection", "//*", [&] { select(3); }, 0},
      {"the selection, where the path asks for it", "//* selection() = \"caret\"", [&] { select(2); }, 1},
      {"a row beside what the path selects", "//task", [&] { create("five"); }, 0},
      {"a row's text beside what the path selects", "//task", [&] { setText(2, "one"); }, 0},
      {"a row that the path selects", "//task", [&] { create("- [ ] six"); }, 1},
      {"the order of outlines", "//*",
       [&] { application.newUntitled(*formats::formatNamed("vell")), application.bringToFront(opened); }, 0},
  };
  for (const auto& each : cases) {
    observe(each.path);
    each.change();
    EXPECT_EQ(heard(), each.heard) << each.name;
    EXPECT_EQ(heard(), 0U) << each.name;
    subscriptions.clientLeft(1);
  }
}

TEST_F(SubscriptionsTest, WhatTakesLongToRenderHoldsUpNothingElse) {
  sink.holds = true;
  observe("//task");
  sink.holds = false;
  const auto slow = std::exchange(sink.jobs, {});
  subscriptions.observeOutline(2, opened, "//*", rowsAsText(formats::formatNamed("markdown")));
  EXPECT_EQ(heard(), 1U);
  setText(4, "3");
  EXPECT_EQ(heard(), 1U);
  for (const auto& job : slow) job();
  EXPECT_EQ(heard(), 2U) << "the state of then and, as it changed meanwhile, that of now";
}

TEST_F(SubscriptionsTest, TheListOfDocumentsIsHeardOnlyWhenItDiffers) {
  subscriptions.observeDocuments(1);
  EXPECT_EQ(heard(), 1U);
  setText(2, "x");
  EXPECT_EQ(heard(), 0U);
  application.bringToFront(opened);
  EXPECT_EQ(heard(), 0U);
  application.newUntitled(*formats::formatNamed("vell"));
  EXPECT_EQ(heard(), 1U);
  application.bringToFront(opened);
  EXPECT_EQ(heard(), 1U);
}

TEST_F(SubscriptionsTest, AClientWithoutRoomHearsTheLastStateOnceItHasRoom) {
  observe("//*");
  sink.room = false;
  setText(2, "x");
  EXPECT_EQ(heard(), 0U);
  setText(2, "y");
  EXPECT_EQ(heard(), 0U);
  sink.room = true;
  subscriptions.clientCaughtUp(1);
  scheduler.runTimers();
  ASSERT_EQ(sink.lines.size(), 1U);
  EXPECT_NE(sink.lines[0].find("y"), std::string::npos);
  sink.lines.clear();
  subscriptions.clientCaughtUp(1);
  EXPECT_EQ(heard(), 0U);
}

TEST_F(SubscriptionsTest, HearsWhatOtherProgramsWriteUnlessItIsTheSame) {
  observe("//*");
  directory.write("a.md", "theirs\n");
  lookAtFiles();
  EXPECT_EQ(heard(), 1U);
  directory.write("a.md", "theirs\n");
  lookAtFiles();
  EXPECT_EQ(heard(), 0U);
}

}  // namespace
}  // namespace vell::headless

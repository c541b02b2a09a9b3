#include "headless/storage/application.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "headless/access.h"
#include "tests/headless/manual_scheduler.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class ApplicationTest : public testing::Test {
 protected:
  void lookAtFiles() {
    scheduler.runTimers();
    for (const auto& opened : application.outlines())
      while (opened->users()->isChanging()) scheduler.runPosted();
  }

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
  lookAtFiles();
  EXPECT_EQ(reports.back(), (directory / "good.md") +
                                (": the persistent id \"@a\" would be taken for @selection or @focused"));
}

/// Whoever asked for a file is gone: it is not read to its end, whatever its format, and nothing is open
/// then.
TEST_F(ApplicationTest, AFileThatNobodyWaitsForIsNotOpened) {
  const tests::TemporaryDirectory folder;
  for (const auto& [name, content] : {std::pair("a.md", "one\n"),
                                      {"a.vell", "vell 1\n\none\n"},
                                      {"a.opml", R"(<opml><body><outline text="one"/></body></opml>)"},
                                      {"a.txt", "one\n"},
                                      {"a.json", R"([{"text":"one"}])"}}) {
    const std::string path = folder.write(name, content);
    const std::atomic<bool> abandoned = true;
    ApplicationAccess access;
    const ApplicationHold hold(access, abandoned);
    EXPECT_THROW(application.open(path), Abandoned) << name;
    EXPECT_THROW(application.serveFolder(folder.path()), Abandoned) << name;
  }
  EXPECT_TRUE(application.outlines().empty());
  EXPECT_EQ(application.serveFolder(folder.path()), 4U);
}

TEST_F(ApplicationTest, AFileReadAnewHasNoCaret) {
  OpenOutline& opened = application.open(directory.write("a.md", "one\n\ntwo\n"));
  const Row& row = *opened.outline().root().firstChild();
  opened.editor().select(row, row);
  directory.write("a.md", "other\n");
  lookAtFiles();
  EXPECT_FALSE(opened.editor().hasSelection());
}

TEST_F(ApplicationTest, AFileIsNotReadAnewWhileSomebodyReadsItsRows) {
  OpenOutline& opened = application.open(directory.write("a.md", "one\n"));
  const auto text = [&] { return opened.outline().root().firstChild()->text().string(); };
  opened.users()->enter(Use::reading);
  directory.write("a.md", "other\n");
  lookAtFiles();
  EXPECT_EQ(text(), "one");
  opened.users()->leave(Use::reading);
  lookAtFiles();
  EXPECT_EQ(text(), "other");
}

/// Starts anew for each question, with the same container.
class Restarted : public testing::Test {
 protected:
  template <class Ask>
  std::string ask(Ask question) {
    ManualScheduler scheduler;
    Application application(scheduler,
                            {container.path(), [this](const std::string& line) { report += line; }});
    application.reopenUntitled();
    return question(application);
  }
  std::string idOf(const std::string& name) {
    return ask([&](Application& application) { return application.open(directory / name).persistentId(); });
  }
  bool canTellFiles() { return stampOf(directory.write("probe", "")).file.born != 0; }

  tests::TemporaryDirectory container;
  tests::TemporaryDirectory directory;
  std::string report;
};

TEST_F(Restarted, AFileKeepsTheIdThatItDoesNotHold) {
  directory.write("a.txt", "one\n");
  const std::string id = idOf("a.txt");
  EXPECT_EQ(idOf("a.txt"), id);
  directory.write("new.txt", "one, by an editor that replaces the file\n");
  fs::rename(directory / "new.txt", directory / "a.txt");
  EXPECT_EQ(idOf("a.txt"), id);
  ask([&](Application& application) {
    OpenOutline& opened = application.open(directory / "a.txt");
    Transaction transaction = application.begin(opened);
    Row& row = transaction.edit().make({.text = Text("two")});
    transaction.edit().insert(row, opened.outline().root(), nullptr);
    transaction.commit();
    application.saveAll();
    return "";
  });
  EXPECT_EQ(idOf("a.txt"), id);
  EXPECT_EQ(readFile(directory / "a.txt").bytes, "one, by an editor that replaces the file\ntwo\n");
  if (!canTellFiles()) GTEST_SKIP() << "the file system does not tell when files were made";
  fs::rename(directory / "a.txt", directory / "b.txt");
  EXPECT_EQ(idOf("b.txt"), id);
  directory.write("a.txt", "another one\n");
  EXPECT_NE(idOf("a.txt"), id);
  EXPECT_EQ(idOf("b.txt"), id);
}

TEST_F(Restarted, AnotherFileThatTakesThePathOverGetsAnotherId) {
  if (!canTellFiles()) GTEST_SKIP() << "the file system does not tell when files were made";
  directory.write("a.txt", "one\n");
  const std::string id = idOf("a.txt");
  fs::rename(directory / "a.txt", directory / "b.txt");
  directory.write("a.txt", "another\n");
  EXPECT_NE(idOf("a.txt"), id);
  EXPECT_EQ(idOf("b.txt"), id);
  fs::remove(directory / "b.txt");
  directory.write("c.txt", "perhaps with the same inode\n");
  EXPECT_NE(idOf("c.txt"), id);
}

TEST_F(Restarted, WhileItIsOpenARenamedFileKeepsItsId) {
  if (!canTellFiles()) GTEST_SKIP() << "the file system does not tell when files were made";
  directory.write("a.txt", "one\n");
  const std::string id = ask([&](Application& application) {
    OpenOutline& opened = application.open(directory / "a.txt");
    fs::rename(directory / "a.txt", directory / "c.txt");
    application.refresh(opened);
    EXPECT_EQ(application.findByPath(directory / "c.txt"), &opened);
    fs::rename(directory / "c.txt", directory / "b.txt");
    EXPECT_EQ(&application.open(directory / "b.txt"), &opened);
    EXPECT_EQ(application.findByPath(directory / "a.txt"), nullptr);
    EXPECT_EQ(application.findByPath(directory / "b.txt"), &opened);
    directory.write("a.txt", "another\n");
    EXPECT_NE(application.open(directory / "a.txt").persistentId(), opened.persistentId());
    return opened.persistentId();
  });
  EXPECT_NE(idOf("a.txt"), id);
  EXPECT_EQ(idOf("b.txt"), id);
}

TEST_F(Restarted, UntitledOutlinesAreKeptInTheirFormat) {
  for (const char* name : {"vell", "markdown", "opml", "txt", "json"}) {
    const formats::Format& format = *formats::formatNamed(name);
    const auto frontmost = [](Application& application) {
      const OpenOutline& opened = application.outline(std::nullopt);
      return opened.persistentId() + " " + opened.displayName() + " " + std::string(opened.format().name);
    };
    const std::string before = ask([&](Application& application) {
      application.newUntitled(format);
      return frontmost(application);
    });
    EXPECT_THAT(before, testing::EndsWith(std::string(" Untitled 1 ") + name));
    EXPECT_EQ(ask(frontmost), before);
    ask([&](Application& application) {
      application.close(application.outline(std::nullopt), true);
      return "";
    });
  }
  EXPECT_EQ(report, "");
}

TEST_F(Restarted, TheContentTellsTheFormatWhereTheNameDoesNot) {
  const std::string png("\x89PNG\r\n\x1a\n\0\0", 10);
  const struct {
    std::string name;
    std::string content;
    std::string outcome;
  } rows[] = {
      {"a.html", "<p>one", "txt"},
      {"a.html", "<?xml version=\"1.0\"?>\n<opml version=\"2.0\"><body/></opml>", "opml"},
      {"a", "\xEF\xBB\xBF\n<opml version=\"2.0\"><body/></opml>", "opml"},
      {"a.data", R"({"rows":[]})", "json"},
      {"a.html", "vell 1\n\none\n", "vell"},
      {"a.txt", "vell 1\n\none\n", "vell"},
      {"a.txt", R"({"rows":[]})", "txt"},
      {"a", "---\nid: 1234-5678\n---\n# one\n", "markdown"},
      {"a", "", "txt"},
      {"a.png", png, "it is not a text"},
      {"a.md", "\xFF\xFE", "line 1 (byte 0): not valid UTF-8; save the file as UTF-8"},
      {"a.conf", "one\n\xE4\n", "line 2 (byte 4): not valid UTF-8; save the file as UTF-8"},
      {"folder", "", "it is a folder"},
      {"gone", "", "No such file or directory"},
  };
  fs::create_directory(directory / "folder");
  for (const auto& row : rows) {
    if (row.name != "folder" && row.name != "gone") directory.write(row.name, row.content);
    const std::string path = directory / row.name;
    EXPECT_EQ(ask([&](Application& application) {
                try {
                  return std::string(application.open(path).format().name);
                } catch (const Problem& problem) {
                  EXPECT_EQ(problem.what(), "Cannot open " + path + ": " + row.outcome);
                  const auto refusal = application.refusal(path);
                  const bool folder = fs::is_directory(path);
                  if (!folder) directory.write(row.name, "other content now\n");
                  EXPECT_EQ(application.refusal(path).has_value(), folder);
                  return refusal.value_or("none");
                }
              }),
              row.outcome)
        << row.name;
  }
}

TEST_F(Restarted, WhatAnInterruptedRunDidNotSaveIsRescuedOnce) {
  const std::string unsaved = container.write("Unsaved/12345678 a.txt", "one\n");
  ask([](Application&) { return ""; });
  const std::string rescued = container / "Rescued/12345678 a.txt";
  EXPECT_EQ(report, "Vell ended before it had saved everything: see " + rescued);
  EXPECT_EQ(readFile(rescued).bytes, "one\n");
  EXPECT_FALSE(fs::exists(unsaved));
}

}  // namespace
}  // namespace vell::headless

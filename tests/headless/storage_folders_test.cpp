#include <gmock/gmock.h>

#include <filesystem>

#include "headless/storage/application.h"
#include "headless/storage/folder_scan.h"
#include "headless/storage/session.h"
#include "tests/headless/manual_scheduler.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> namesIn(const FolderScan& scan) {
  std::vector<std::string> names;
  for (const std::string& path : scan.files()) names.push_back(path.substr(scan.folder().size() + 1));
  return names;
}

TEST(FolderScan, FindsOutlineFilesAndWhatBecomesOfThem) {
  const tests::TemporaryDirectory folder;
  for (const char* name : {"a.md", "B.OPML", "c.vell", "d.txt", "e.markdown", "sub/deep/f.md", "package.json",
                           "g.html", "h", ".hidden.md", ".git/i.md", "sub/.j/k.md"})
    folder.write(name, "");
  fs::create_directory_symlink(folder.path(), folder / "sub/loop");
  fs::create_symlink(folder / "g.html", folder / "link.md");
  fs::create_symlink(folder / "nowhere", folder / "broken.md");
  fs::create_directory(folder / "folder.md");
  FolderScan scan(folder.path());
  EXPECT_TRUE(scan.look());
  const auto all = ElementsAre("B.OPML", "a.md", "c.vell", "d.txt", "e.markdown", "link.md", "sub/deep/f.md");
  EXPECT_THAT(namesIn(scan), all);
  EXPECT_FALSE(scan.look());
  // A folder that was not touched lately is read again only once it is.
  fs::last_write_time(folder / "sub/deep", fs::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_FALSE(scan.look());
  EXPECT_FALSE(scan.look());
  folder.write("sub/deep/new.md", "");
  EXPECT_TRUE(scan.look());
  EXPECT_EQ(scan.files().back(), folder / "sub/deep/new.md");
  fs::rename(folder / "sub/deep/new.md", folder / "sub/deep/new.html");
  EXPECT_TRUE(scan.look());
  EXPECT_THAT(namesIn(scan), all);
  fs::remove_all(folder / "sub");
  EXPECT_TRUE(scan.look());
  EXPECT_EQ(scan.files().size(), 6U);
  fs::rename(folder.path(), folder.path() + "-away");
  EXPECT_TRUE(scan.look());
  EXPECT_THAT(scan.files(), IsEmpty());
  fs::rename(folder.path() + "-away", folder.path());
  EXPECT_TRUE(scan.look());
  EXPECT_THROW(FolderScan(folder.path(), {.files = 5}).look(), Problem);
  EXPECT_TRUE(FolderScan(folder.path(), {.files = 6}).look());
}

class FoldersTest : public testing::Test {
 protected:
  /// A run of the application over the same container; ends with the returned object.
  struct Run {
    explicit Run(FoldersTest& test)
        : application(scheduler,
                      {.container = test.container.path(),
                       .report = [&test](const std::string& line) { test.reports.push_back(line); },
                       .log = [&test](const std::string& line) { test.logged.push_back(line); }}),
          session(scheduler, application) {}

    std::vector<std::string> names() const {
      std::vector<std::string> names;
      for (const auto& outline : application.outlines()) names.push_back(outline->displayName());
      return names;
    }
    std::string idOf(const std::string& path) const {
      const OpenOutline* opened = application.findByPath(path);
      return opened != nullptr ? opened->persistentId() : "";
    }

    ManualScheduler scheduler;
    Application application;
    Session session;
  };

  tests::TemporaryDirectory container;
  tests::TemporaryDirectory folder;
  std::vector<std::string> reports;
  std::vector<std::string> logged;
};

TEST_F(FoldersTest, OutlinesComeAndGoWithTheirFiles) {
  Run run(*this);
  EXPECT_THROW(run.application.serveFolder(folder / "none"), Problem);
  folder.write("a.md", "a\n");
  folder.write("b.md", "b\n");
  folder.write("bad.txt", "\xFF");
  EXPECT_EQ(run.application.serveFolder(folder.path()), 2U);
  fs::create_directory_symlink(folder.path(), container / "link");
  for (const std::string& same : {folder.path() + "/", container / "link"})
    EXPECT_EQ(run.application.serveFolder(same), 2U);
  EXPECT_THAT(run.names(), ElementsAre("a.md", "b.md"));
  EXPECT_THAT(logged, ElementsAre(testing::StartsWith("Cannot open " + (folder / "bad.txt"))));
  EXPECT_THAT(run.application.folders().unreadable(),
              ElementsAre(testing::Pair(folder / "bad.txt", logged.back())));

  // One that could not be read is read once it has changed.
  folder.write("bad.txt", "good\n");
  run.scheduler.runPosted();
  EXPECT_THAT(run.names(), ElementsAre("a.md", "b.md", "bad.txt"));
  EXPECT_THAT(run.application.folders().unreadable(), IsEmpty());
  run.application.close(*run.application.findByPath(folder / "bad.txt"), false);

  folder.write("sub/c.md", "c\n");
  run.scheduler.runPosted();
  EXPECT_THAT(run.names(), ElementsAre("a.md", "b.md", "c.md"));
  EXPECT_EQ(logged.back(), "Opened " + (folder / "sub/c.md") + ", which is new");

  // One that a client closes stays closed, one that is gone is closed, and opened when it comes back.
  run.application.close(*run.application.findByPath(folder / "b.md"), false);
  fs::remove(folder / "sub/c.md");
  run.scheduler.runTimers();
  EXPECT_THAT(run.names(), ElementsAre("a.md", "c.md"));  // it may be about to be replaced
  run.scheduler.runTimers();
  EXPECT_THAT(run.names(), ElementsAre("a.md"));
  EXPECT_EQ(logged.back(), "Closed " + (folder / "sub/c.md") + ": the file is gone");
  folder.write("sub/c.md", "c\n");
  run.scheduler.runPosted();
  EXPECT_THAT(run.names(), ElementsAre("a.md", "c.md"));
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(FoldersTest, AnOutlineMovesWithItsFileAndStaysWithUnsavedChanges) {
  Run run(*this);
  folder.write("a.md", "a\n");
  fs::create_directory(folder / "sub");
  run.application.serveFolder(folder.path());
  const std::string id = run.idOf(folder / "a.md");
  if (stampOf(folder / "a.md").file.born == 0)
    GTEST_SKIP() << "the file system does not tell when files were made";
  fs::rename(folder / "a.md", folder / "sub/b.md");
  run.scheduler.runPosted();
  EXPECT_EQ(run.idOf(folder / "sub/b.md"), id);
  EXPECT_THAT(run.names(), ElementsAre("b.md"));
  OpenOutline& opened = *run.application.outlines().front();
  fs::remove(opened.storagePath());
  run.scheduler.runTimers();
  Transaction transaction = run.application.begin(opened);
  transaction.edit().insert(transaction.edit().make({.text = Text("two")}), opened.outline().root(), nullptr);
  transaction.commit();
  run.scheduler.runTimers();
  EXPECT_EQ(run.application.outlines().size(), 1U);
  run.application.saveAll();
  EXPECT_EQ(readFile(opened.storagePath()).bytes, "a\n\ntwo\n");
}

TEST_F(FoldersTest, AFileThatIsMissedBeforeItIsFoundElsewhereIsMissedAgainWhenItGoes) {
  Run run(*this);
  folder.write("a.md", "a\n");
  fs::create_directory(folder / "sub");
  run.application.serveFolder(folder.path());
  fs::rename(folder / "a.md", folder / "sub/a.md");
  run.scheduler.runTimers();
  run.scheduler.runPosted();
  run.scheduler.runTimers();
  fs::remove(folder / "sub/a.md");
  run.scheduler.runTimers();
  run.scheduler.runTimers();
  EXPECT_THAT(run.names(), IsEmpty());
}

TEST_F(FoldersTest, TheNextRunOpensWhatWasOpen) {
  const tests::TemporaryDirectory files;
  folder.write("a.md", "a\n");
  files.write("one.txt", "one\n");
  files.write("gone.txt", "gone\n");
  files.write("closed.txt", "closed\n");
  std::string untitled;
  {
    Run run(*this);
    run.session.reopen();
    run.session.keep();
    run.application.serveFolder(folder.path());
    for (const char* name : {"one.txt", "gone.txt", "closed.txt"}) run.application.open(files / name);
    untitled = run.application.newUntitled(*formats::formatNamed("txt")).persistentId();
    run.application.close(*run.application.findByPath(files / "closed.txt"), false);
    run.application.bringToFront(*run.application.findByPath(folder / "a.md"));
    run.scheduler.runTimers();  // and then it is killed
  }
  fs::remove(files / "gone.txt");
  folder.write("b.md", "b\n");
  {
    Run run(*this);
    run.session.reopen();
    EXPECT_THAT(run.names(), ElementsAre("a.md", "one.txt", "b.md", "Untitled 1"));
    EXPECT_NE(run.application.findByPersistentId(untitled), nullptr);
    EXPECT_THAT(run.application.folders().paths(), ElementsAre(folder.path()));
    EXPECT_THAT(logged, ElementsAre("Not open any more: Cannot open " + (files / "gone.txt") +
                                    ": No such file or directory"));
  }
  // What is given goes in front; what was open, in front or not, behind it.
  files.write("given.txt", "given\n");
  {
    Run run(*this);
    run.application.openBehind(files / "given.txt");
    run.session.reopen();
    EXPECT_THAT(run.names(), ElementsAre("given.txt", "one.txt", "a.md", "b.md", "Untitled 1"));
  }
  for (const char* content : {"{", "[]", "{\"files\":[1,\"\",\"relative\"],\"front\":[\"\"]}"}) {
    container.write("session", content);
    Run run(*this);
    run.session.reopen();
    EXPECT_THAT(run.names(), ElementsAre("Untitled 1")) << content;
  }
  EXPECT_THAT(reports, ElementsAre(testing::StartsWith("Cannot tell what was open: ")));
}

}  // namespace
}  // namespace vell::headless

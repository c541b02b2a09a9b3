#include "headless/storage/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "headless/editing/problem.h"
#include "headless/storage/log_file.h"
#include "headless/storage/paths.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;

unsigned modeOf(const std::string& path) {
  struct stat status {};
  stat(path.c_str(), &status);
  return status.st_mode & 07777U;
}

std::size_t filesIn(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::optional<Replaced> replaceNow(const std::string& path, std::string_view bytes) {
  const tests::TemporaryDirectory spare;
  auto replaced = replaceExpected(path, {bytes}, stampOf(path), spare / "copy");
  EXPECT_EQ(filesIn(spare.path()), 0U);
  return replaced;
}

TEST(Files, ReplacingKeepsWhatBelongsToTheFileAndLeavesNothingBeside) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("real/a.txt", "old");
  chmod(file.c_str(), 0640);
  const std::string link = directory / "link.txt";
  fs::create_symlink("real/a.txt", link);

  const FileStamp before = stampOf(link);
  const auto replaced = replaceNow(link, "new");

  EXPECT_EQ(readFile(file).bytes, "new");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(modeOf(file), 0640U);
  EXPECT_EQ(filesIn(directory / "real"), 1U);
  ASSERT_TRUE(replaced);
  EXPECT_NE(replaced->stamp, before);
  EXPECT_EQ(replaced->stamp, stampOf(file));
  EXPECT_FALSE(replaced->anew);
  fs::remove(file);
  EXPECT_TRUE(replaceNow(link, "anew")->anew);
  EXPECT_EQ(readFile(file).bytes, "anew");
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST(Files, AFileWithSeveralNamesIsOverwritten) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("a.txt", "old content");
  const std::string other = directory / "other.txt";
  fs::create_hard_link(file, other);
  for (const std::string content : {"shorter", "longer than before", ""}) {
    const auto replaced = replaceNow(file, content);
    EXPECT_EQ(readFile(other).bytes, content);
    ASSERT_TRUE(replaced);
    EXPECT_EQ(replaced->stamp, stampOf(other));
  }
  const tests::TemporaryDirectory spare;
  const FileStamp stamp = stampOf(file);
  directory.write("a.txt", "theirs");
  EXPECT_FALSE(replaceExpected(file, {"ours"}, stamp, spare / "copy"));
  EXPECT_EQ(readFile(file).bytes, "theirs");
}

TEST(Files, AFileInAFolderThatTakesNoOtherIsOverwritten) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("closed/a.txt", "old");
  const platform::FileIdentity before = stampOf(file).file;
  chmod((directory / "closed").c_str(), 0555);
  const bool takesNone = access((directory / "closed").c_str(), W_OK) != 0;  // not for root
  EXPECT_TRUE(replaceNow(file, "new"));
  chmod((directory / "closed").c_str(), 0755);
  EXPECT_EQ(readFile(file).bytes, "new");
  EXPECT_EQ(stampOf(file).file == before, takesNone);
}

TEST(Files, ARenamedFileIsFoundButNoBackup) {
  const struct {
    const char* name;
    bool replaced;
    bool found;
  } rows[] = {{"b.txt", false, true},     {"b.txt", true, true},    {"a.txt~", false, false},
              {"a.txt.bak", true, false}, {".a.txt", false, false}, {"inner/b.txt", true, false}};
  for (const auto& [name, replaced, found] : rows) {
    const tests::TemporaryDirectory directory;
    directory.write("inner/c.txt", "");
    const std::string file = directory.write("a.txt", "old");
    const platform::FileIdentity identity = stampOf(file).file;
    if (identity.born == 0) GTEST_SKIP() << "the file system does not tell when files were made";
    EXPECT_EQ(renamedFile(file, identity), std::nullopt);
    fs::rename(file, directory / name);
    if (replaced) directory.write("a.txt", "other");
    EXPECT_EQ(renamedFile(file, identity), found ? std::optional(directory / name) : std::nullopt) << name;
  }
}

TEST(Files, WhatAnInterruptedReplacementLeftIsRemovedAndNothingElse) {
  const tests::TemporaryDirectory directory;
  const std::string others[] = {"a.txt",
                                ".a.txt",
                                ".a.txt.vell-",
                                ".a.txt.vell-12345678.txt",
                                "b.txt.vell-12345678",
                                ".a.txt.vell-notes123"};
  for (const std::string& name : others) directory.write(name, "");
  directory.write(".a.txt.vell-12345678", "half a f");
  removeAbandoned(directory.path());
  EXPECT_FALSE(fs::exists(directory / ".a.txt.vell-12345678"));
  for (const std::string& name : others) EXPECT_TRUE(fs::exists(directory / name)) << name;
  removeAbandoned(directory / "gone");
}

TEST(Files, AStampTellsThatSomebodyElseWrote) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("a.txt", "old");
  const FileStamp stamp = readFile(file).stamp;
  const auto modified = fs::last_write_time(file);
  EXPECT_EQ(stamp, stampOf(file));
  directory.write("a.txt", "new");
  fs::last_write_time(file, modified);
  EXPECT_NE(stamp, stampOf(file));
  EXPECT_FALSE(replaceExpected(file, {"ours"}, stamp, directory / "spare"));
  EXPECT_EQ(readFile(file).bytes, "new");
  EXPECT_TRUE(replaceNow(file, "ours"));
  EXPECT_EQ(readFile(file).bytes, "ours");
  EXPECT_EQ(filesIn(directory.path()), 1U);
  fs::remove(file);
  EXPECT_EQ(stampOf(file), FileStamp());
}

TEST(Files, SaysWhyAFileCannotBeReadOrWritten) {
  const tests::TemporaryDirectory directory;
  const auto problemOf = [](auto action) -> std::string {
    try {
      action();
      return "none";
    } catch (const Problem& problem) {
      return problem.what();
    }
  };
  const std::string gone = directory / "gone/a.txt";
  EXPECT_EQ(problemOf([&] { readFile(gone); }), "Cannot open " + gone + ": No such file or directory");
  EXPECT_EQ(problemOf([&] { readFile(directory.path()); }),
            "Cannot open " + directory.path() + ": it is a folder");
  EXPECT_EQ(problemOf([] { readFile("/dev/null"); }), "Cannot open /dev/null: it is not a regular file");
  EXPECT_EQ(problemOf([&] { replaceFile(gone, {"x"}); }),
            "Cannot save " + gone + ": its folder " + (directory / "gone") +
                " takes no new file: No such file or directory");
  const std::string file = directory.write("a.txt", "old");
  chmod(file.c_str(), 0444);
  const bool mayAll = access(file.c_str(), W_OK) == 0;  // root
  EXPECT_EQ(problemOf([&] { replaceNow(file, "new"); }),
            mayAll ? "none" : "Cannot save " + file + ": it is write-protected");
}

TEST(Files, ALogStaysSmall) {
  const tests::TemporaryDirectory directory;
  const LogFile log(directory / "vell.log");
  for (int i = 0; i < 20; ++i) log.append(std::string(100'000, 'x'));
  log.append("the last one");
  EXPECT_EQ(filesIn(directory.path()), 2U);
  EXPECT_LT(fs::file_size(directory / "vell.log") + fs::file_size(directory / "vell.log.old"), 1'300'000U);
  EXPECT_NE(readFile(directory / "vell.log").bytes.find("Z the last one\n"), std::string::npos);
}

TEST(Files, PrivateDirectoriesAreClosedToOthers) {
  const tests::TemporaryDirectory directory;
  const std::string inner = directory / "a/b/c";
  makePrivateDirectory(inner);
  EXPECT_EQ(modeOf(directory / "a"), 0700U);
  EXPECT_EQ(modeOf(inner), 0700U);
  chmod(inner.c_str(), 0755);
  makePrivateDirectory(inner);
  EXPECT_EQ(modeOf(inner), 0700U);
  EXPECT_THROW(makePrivateDirectory(directory.write("file", "")), Problem);
}

TEST(Paths, NamesAreCutBetweenCharacters) {
  EXPECT_EQ(fittedName("a ", "name", ".txt"), "a name.txt");
  std::string umlauts;
  for (int i = 0; i < 127; ++i) umlauts += "ä";
  for (const std::string start : {"", "x"}) {
    const std::string name = fittedName(start, umlauts, " (conflict).txt");
    EXPECT_EQ(name, start + umlauts.substr(0, 240 - 2 * start.size()) + " (conflict).txt");
  }
}

TEST(Paths, AreStandardisedAndTurnedIntoUrls) {
  EXPECT_EQ(standardisedPath("/a/./b//../c/"), "/a/c");
  EXPECT_EQ(standardisedPath("//a"), "/a");
  EXPECT_EQ(standardisedPath("/.."), "/");
  EXPECT_EQ(standardisedPath("x.md"), fs::current_path().string() + "/x.md");
  EXPECT_EQ(fileUrl("/a b/ä%#?;.md"), "file:///a%20b/%C3%A4%25%23%3F;.md");
}

}  // namespace
}  // namespace vell::headless

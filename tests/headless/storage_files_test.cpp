#include "headless/storage/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "headless/editing/problem.h"
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

TEST(Files, ReplacingKeepsModeAndLinksAndLeavesNothingBeside) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("real/a.txt", "old");
  chmod(file.c_str(), 0640);
  const std::string link = directory / "link.txt";
  fs::create_symlink("real/a.txt", link);

  const FileStamp before = stampOf(link);
  const FileStamp after = replaceFile(link, "new");

  EXPECT_EQ(readFile(file).bytes, "new");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(modeOf(file), 0640U);
  EXPECT_EQ(std::distance(fs::directory_iterator(directory / "real"), fs::directory_iterator()), 1);
  EXPECT_NE(after, before);
  EXPECT_EQ(after, stampOf(file));
  fs::remove(file);
  replaceFile(link, "anew");
  EXPECT_EQ(readFile(file).bytes, "anew");
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST(Files, WhatAnInterruptedReplacementLeftIsRemovedAndNothingElse) {
  const tests::TemporaryDirectory directory;
  const std::string others[] = {"a.txt", ".a.txt", ".a.txt.vell-", ".a.txt.vell-12345678.txt",
                                ".b.txt.vell-12345678"};
  for (const std::string& name : others) directory.write(name, "");
  directory.write(".a.txt.vell-12345678", "half a f");
  removeAbandoned(directory / "a.txt");
  EXPECT_FALSE(fs::exists(directory / ".a.txt.vell-12345678"));
  for (const std::string& name : others) EXPECT_TRUE(fs::exists(directory / name)) << name;
  removeAbandoned(directory / "gone/a.txt");
}

TEST(Files, AStampTellsThatSomebodyElseWrote) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("a.txt", "old");
  const FileStamp stamp = readFile(file).stamp;
  EXPECT_EQ(stamp, stampOf(file));
  directory.write("a.txt", "other");
  EXPECT_NE(stamp, stampOf(file));
  EXPECT_EQ(replaceExpected(file, "ours", stamp), std::nullopt);
  EXPECT_EQ(readFile(file).bytes, "other");
  EXPECT_NE(replaceExpected(file, "ours", stampOf(file)), std::nullopt);
  EXPECT_EQ(readFile(file).bytes, "ours");
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 1);
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
            "Cannot open " + directory.path() + ": it is not a regular file");
  EXPECT_EQ(problemOf([&] { replaceFile(gone, "x"); }),
            "Cannot save " + gone + ": open: No such file or directory");
  const std::string file = directory.write("a.txt", "old");
  chmod(file.c_str(), 0444);
  const bool mayAll = access(file.c_str(), W_OK) == 0;  // root
  EXPECT_EQ(problemOf([&] { replaceFile(file, "new"); }),
            mayAll ? "none" : "Cannot save " + file + ": it is write-protected");
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

TEST(Paths, AreStandardisedAndTurnedIntoUrls) {
  EXPECT_EQ(standardisedPath("/a/./b//../c/"), "/a/c");
  EXPECT_EQ(standardisedPath("//a"), "/a");
  EXPECT_EQ(standardisedPath("/.."), "/");
  EXPECT_EQ(standardisedPath("x.md"), fs::current_path().string() + "/x.md");
  EXPECT_EQ(fileUrl("/a b/ä%#?;.md"), "file:///a%20b/%C3%A4%25%23%3F;.md");
}

}  // namespace
}  // namespace vell::headless

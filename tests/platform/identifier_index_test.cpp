#include "platform/identifier_index.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

#include "platform/files.h"
#include "tests/support/temporary_directory.h"

namespace vell::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(IdentifierIndex, FindsWhatWasPutLatestFirst) {
  const tests::TemporaryHome home;
  EXPECT_THAT(findFilesByIdentifier("a"), IsEmpty());
  IdentifierIndex index;
  index.put({"a", "/one"});
  index.put({"b", "/with\ttab\nand line feed"});
  index.put({"a", "/copy"});
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/copy", "/one"));
  EXPECT_THAT(findFilesByIdentifier("b"), ElementsAre("/with\ttab\nand line feed"));
  EXPECT_THAT(findFilesByIdentifier("/one"), IsEmpty());
  index.put({"a", "/one"});
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/one", "/copy"));
  index.put({"c", "/one"});
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/copy"));
  EXPECT_THAT(findFilesByIdentifier("c"), ElementsAre("/one"));
}

TEST(IdentifierIndex, AFileCutShortGivesWhatIsWhole) {
  const tests::TemporaryDirectory directory;
  directory.write("identifiers", std::string("a\0/one\0b\0/two\0", 14));
  EXPECT_THAT(IdentifierIndex(directory.path()).find("a"), IsEmpty());  // a file of another form
  directory.write("identifiers", std::string("a\0/one\0\0b\0/t", 12));
  IdentifierIndex index(directory.path());
  EXPECT_THAT(index.find("a"), ElementsAre("/one"));
  index.put({"b", "/two"});
  EXPECT_THAT(index.find("b"), ElementsAre("/two"));
}

TEST(IdentifierIndex, SeveralWritersLoseNothing) {
  const tests::TemporaryDirectory directory;
  std::vector<std::thread> writers;
  for (const std::string name : {"x", "y", "z"}) {
    writers.emplace_back([&directory, name] {
      IdentifierIndex index(directory.path());
      for (int i = 0; i < 20; ++i) index.put({name, "/" + name + std::to_string(i)});
    });
  }
  for (std::thread& writer : writers) writer.join();
  for (const std::string name : {"x", "y", "z"}) {
    EXPECT_EQ(IdentifierIndex(directory.path()).find(name).size(), 20U) << name;
  }
}

TEST(IdentifierIndex, KnowsFilesByPathAndByThemselves) {
  const tests::TemporaryDirectory directory;
  IdentifierIndex writer(directory.path());
  IdentifierIndex reader(directory.path());
  const FileIdentity one{1, 2, 3};
  const FileIdentity other{1, 2, 4};
  writer.put({"a", "/one", one});
  ASSERT_NE(reader.atPath("/one"), nullptr);
  EXPECT_EQ(reader.atPath("/one")->identifier, "a");
  ASSERT_NE(reader.ofFile(one), nullptr);
  EXPECT_EQ(reader.ofFile(one)->path, "/one");
  EXPECT_EQ(reader.ofFile(other), nullptr);
  writer.put({"a", "/one", other});
  EXPECT_EQ(reader.ofFile(one), nullptr);
  writer.forget("/one");
  EXPECT_EQ(reader.atPath("/one"), nullptr);
  EXPECT_EQ(reader.ofFile(other), nullptr);
  EXPECT_THAT(reader.find("a"), IsEmpty());
}

TEST(IdentifierIndex, GrowsWithWhatCountsAlone) {
  const tests::TemporaryDirectory directory;
  IdentifierIndex index(directory.path());
  const std::string here = directory.write("here", "");
  index.put({"here", here});
  for (int i = 0; i < 5'000; ++i) index.put({"gone", directory / ("gone" + std::to_string(i))});
  const auto size = std::filesystem::file_size(directory / "identifiers");
  for (int i = 0; i < 5'000; ++i) index.put({"again", directory / "again", {1, 2, i}});
  EXPECT_LE(std::filesystem::file_size(directory / "identifiers"), size);
  EXPECT_THAT(index.find("here"), ElementsAre(here));
  EXPECT_EQ(index.find("gone").front(), directory / "gone4999");
  EXPECT_LT(index.find("gone").size(), 5'000U);
}

TEST(IdentifierIndex, SaysThatItCannotWrite) {
  const tests::TemporaryDirectory directory;
  EXPECT_THROW(IdentifierIndex(directory / "missing").put({"a", "/one"}), std::system_error);
}

}  // namespace
}  // namespace vell::platform

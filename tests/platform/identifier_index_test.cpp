#include "platform/identifier_index.h"

#include <gmock/gmock.h>

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
  index.put("a", "/one");
  index.put("b", "/with\ttab\nand line feed");
  index.put("a", "/copy");
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/copy", "/one"));
  EXPECT_THAT(findFilesByIdentifier("b"), ElementsAre("/with\ttab\nand line feed"));
  EXPECT_THAT(findFilesByIdentifier("/one"), IsEmpty());
  index.put("a", "/one");
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/one", "/copy"));
  index.put("c", "/one");
  EXPECT_THAT(findFilesByIdentifier("a"), ElementsAre("/copy"));
  EXPECT_THAT(findFilesByIdentifier("c"), ElementsAre("/one"));
}

TEST(IdentifierIndex, AFileCutShortGivesWhatIsWhole) {
  const tests::TemporaryDirectory directory;
  IdentifierIndex index(directory.path());
  directory.write("identifiers", std::string("a\0/one\0b", 8));
  EXPECT_THAT(index.find("a"), ElementsAre("/one"));
  index.put("b", "/two");
  EXPECT_THAT(index.find("b"), ElementsAre("/two"));
}

TEST(IdentifierIndex, SeveralWritersLoseNothing) {
  const tests::TemporaryDirectory directory;
  std::vector<std::thread> writers;
  for (const std::string name : {"x", "y", "z"}) {
    writers.emplace_back([&directory, name] {
      IdentifierIndex index(directory.path());
      for (int i = 0; i < 20; ++i) index.put(name, "/" + name + std::to_string(i));
    });
  }
  for (std::thread& writer : writers) writer.join();
  for (const std::string name : {"x", "y", "z"}) {
    EXPECT_EQ(IdentifierIndex(directory.path()).find(name).size(), 20U) << name;
  }
}

TEST(IdentifierIndex, SaysThatItCannotWrite) {
  const tests::TemporaryDirectory directory;
  EXPECT_THROW(IdentifierIndex(directory / "missing").put("a", "/one"), std::system_error);
}

}  // namespace
}  // namespace vell::platform

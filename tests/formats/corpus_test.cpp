#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/formats/changed_file.h"
#include "tests/support/temporary_directory.h"

namespace vell::formats {
namespace {

/// The documents in corpus/, written as people write them, one test each.
class Corpus : public testing::TestWithParam<std::string> {
 protected:
  static ChangedFile open() {
    return {formatForFile(GetParam())->name, tests::contentOf(VELL_CORPUS "/" + GetParam())};
  }
};

TEST_P(Corpus, IsWrittenAsItWasRead) {
  const ChangedFile file = open();
  EXPECT_EQ(file.differs(), "");
  EXPECT_EQ(file.readsOtherwise(), "");
}

TEST_P(Corpus, AChangeStaysInItsRowAndCanBeUndone) {
  ChangedFile file = open();
  for (std::size_t row = 0; row < file.outline().rowCount(); ++row) {
    for (std::size_t kind = 0; kind < changeKinds; ++kind) {
      for (unsigned seed = 0; seed < 3; ++seed) {
        if (!file.change(row, static_cast<ChangeKind>(kind), seed)) continue;
        ASSERT_EQ(file.touchesOthers(), "") << file.story();
        ASSERT_EQ(file.readsOtherwise(), "") << file.story();
        file.undo();
        ASSERT_EQ(file.differs(), "") << file.story();
      }
    }
  }
}

TEST_P(Corpus, ManyChangesReadBackAndCanBeUndone) {
  ChangedFile file = open();
  for (unsigned seed = 0; seed < 40; ++seed) {
    OutlineGenerator random(seed, {});
    for (std::size_t count = 2 + random.below(6); count > 0 && file.outline().rowCount() > 0; --count) {
      file.change(random.below(file.outline().rowCount()), static_cast<ChangeKind>(random.below(changeKinds)),
                  seed);
      ASSERT_EQ(file.readsOtherwise(), "") << file.story();
    }
    file.undo();
    ASSERT_EQ(file.differs(), "") << file.story();
  }
}

std::vector<std::string> documents() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(VELL_CORPUS)) {
    names.push_back(file.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Documents, Corpus, testing::ValuesIn(documents()), [](const auto& test) {
  std::string name = test.param;
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
});

}  // namespace
}  // namespace vell::formats

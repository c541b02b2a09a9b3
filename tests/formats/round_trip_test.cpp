#include <gtest/gtest.h>

#include "platform/thread.h"
#include "tests/formats/changed_file.h"

namespace vell::formats {
namespace {

constexpr std::string_view formats[] = {"vell", "json", "markdown", "opml", "txt"};

void checkRoundTrips(std::string_view format) {
  const Holds holds = heldBy(*formatNamed(format));
  for (unsigned seed = 0; seed < 1500; ++seed) {
    Outline outline;
    OutlineGenerator(seed, holds).fill(outline, 1 + seed % 12);
    const std::string text = writeAll(format, outline);
    Outline again;
    ASSERT_NO_THROW(readAs(format, text, again)) << format << ", seed " << seed << "\n" << text;
    ASSERT_EQ(dump(again, holds), dump(outline, holds)) << format << ", seed " << seed << "\n" << text;
    ASSERT_EQ(writeAll(format, again), text) << format << ", seed " << seed;
  }
}

TEST(RoundTrip, ReadsBackWhatWasWritten) {
  for (const std::string_view format : formats) checkRoundTrips(format);
}

TEST(DeepNesting, CostsNoCallFrames) {
  constexpr std::size_t depth = 5'000;
  Outline outline;
  Row* parent = &outline.root();
  for (std::size_t level = 0; level < depth; ++level) {
    Row* row = outline.create(RowType::unordered, Text("x"), 0);
    outline.insert(*row, *parent);
    parent = row;
  }
  platform::onStackOf(512 << 10, [&] {  // the smallest: that of a thread on macOS
    for (const std::string_view format : formats) {
      Outline again;
      readAs(format, writeAll(format, outline), again);
      again.number();
      EXPECT_EQ(again.rowCount(), depth) << format;
      EXPECT_EQ(again.find(static_cast<SessionId>(depth + 1))->level(), depth) << format;
    }
  });
}

/// Broken input of every kind is refused with a message, or read and written back as it was.
TEST(BrokenInput, IsReadOrRefused) {
  std::mt19937 random(7);
  for (unsigned seed = 0; seed < 400; ++seed) {
    Outline outline;
    OutlineGenerator(seed, {}).fill(outline, 8);
    for (const std::string_view name : formats) {
      std::string text = writeAll(name, outline);
      for (int change = 0; change < 3; ++change) {
        const std::size_t at = random() % text.size();
        text.replace(at, random() % 4, OutlineGenerator(static_cast<unsigned>(random()), {}).text());
        if (random() % 8 == 0) text[at % text.size()] = static_cast<char>(random() % 256);
        if (text.empty()) text = "x";
      }
      try {
        Outline again;
        const Format& format = *formatNamed(name);
        readFile(format, text, {}, again);
        writeAll("session", again);
        if (format.update) {
          EXPECT_EQ(fileText(format, again).string(), text) << name;
        }
      } catch (const FormatError& error) {
        EXPECT_EQ(std::string_view(error.what()).substr(0, 5), "line ");
      }
    }
  }
}

}  // namespace
}  // namespace vell::formats

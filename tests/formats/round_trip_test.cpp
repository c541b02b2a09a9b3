#include <gtest/gtest.h>

#include "formats/inline_markdown.h"
#include "tests/formats/support.h"

namespace vell::formats {
namespace {

struct FormatCase {
  const char* format;
  Holds holds;
};

const FormatCase formatCases[] = {
    {"vell", {}},
    {"json", {}},
    {"markdown", {.times = false}},
    {"opml", {.controls = false}},
    {"txt", {.styles = false, .times = false, .lineEnds = false}},
};

void checkRoundTrips(const FormatCase& format) {
  for (unsigned seed = 0; seed < 1500; ++seed) {
    Outline outline;
    OutlineGenerator(seed, format.holds).fill(outline, 1 + seed % 12);
    const std::string text = writeAll(format.format, outline);
    Outline again;
    ASSERT_NO_THROW(readAs(format.format, text, again)) << format.format << ", seed " << seed << "\n" << text;
    ASSERT_EQ(dump(again, format.holds), dump(outline, format.holds))
        << format.format << ", seed " << seed << "\n"
        << text;
    ASSERT_EQ(writeAll(format.format, again), text) << format.format << ", seed " << seed;
  }
}

TEST(RoundTrip, ReadsBackWhatWasWritten) {
  for (const FormatCase& format : formatCases) checkRoundTrips(format);
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
  for (const FormatCase& row : formatCases) {
    Outline again;
    readAs(row.format, writeAll(row.format, outline), again);
    again.number();
    EXPECT_EQ(again.rowCount(), depth) << row.format;
    EXPECT_EQ(again.find(static_cast<SessionId>(depth + 1))->level(), depth) << row.format;
  }
}

/// Broken input of every kind is refused with a message, or read and written back as it was.
TEST(BrokenInput, IsReadOrRefused) {
  std::mt19937 random(7);
  for (unsigned seed = 0; seed < 400; ++seed) {
    Outline outline;
    OutlineGenerator(seed, {}).fill(outline, 8);
    for (const FormatCase& row : formatCases) {
      std::string text = writeAll(row.format, outline);
      for (int change = 0; change < 3; ++change) {
        const std::size_t at = random() % text.size();
        text.replace(at, random() % 4, OutlineGenerator(static_cast<unsigned>(random()), {}).text());
        if (random() % 8 == 0) text[at % text.size()] = static_cast<char>(random() % 256);
        if (text.empty()) text = "x";
      }
      try {
        Outline again;
        const Format& format = *formatNamed(row.format);
        readFile(format, text, {}, again);
        writeAll("session", again);
        if (format.update) {
          EXPECT_EQ(fileText(format, again), text) << row.format;
        }
      } catch (const FormatError& error) {
        EXPECT_EQ(std::string_view(error.what()).substr(0, 5), "line ");
      }
    }
  }
}

}  // namespace
}  // namespace vell::formats

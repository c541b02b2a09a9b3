#include "json/line_framing.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

namespace vell::json {
namespace {

struct Case {
  const char* name;
  std::vector<std::string> arriving;
  std::vector<std::string> lines;
  std::string leftover;
};

const Case cases[] = {
    {"nothing", {}, {}, ""},
    {"one line", {"abc\n"}, {"abc"}, ""},
    {"split anywhere", {"a", "", "bc", "\n"}, {"abc"}, ""},
    {"several in one read", {"a\nbb\n\nccc\n"}, {"a", "bb", "", "ccc"}, ""},
    {"a line and a half, then the rest", {"first\nsec", "ond\nth"}, {"first", "second"}, "th"},
    {"a short line behind a long one",
     {std::string(5000, 'x'), "\nshort\nrest"},
     {std::string(5000, 'x'), "short"},
     "rest"},
    {"a long line behind a short one",
     {"a\n" + std::string(9000, 'y'), "y\nz\n"},
     {"a", std::string(9001, 'y'), "z"},
     ""},
    {"leftover only", {"abc"}, {}, "abc"},
};

void drain(LineFraming& framing, std::vector<std::string>& lines) {
  while (auto line = framing.next()) lines.emplace_back(line->view());
}

void read(LineFraming& framing, char byte, std::size_t count) {
  const LineFraming::Room room = framing.room();
  ASSERT_GE(room.size, count);
  std::memset(room.data, byte, count);
  framing.commit(count);
}

TEST(LineFraming, SplitsHoweverTheBytesArrive) {
  for (const Case& row : cases) {
    LineFraming fed, bytewise;
    std::vector<std::string> fedLines, bytewiseLines;
    for (const std::string& bytes : row.arriving) {
      fed.feed(bytes);
      drain(fed, fedLines);
      for (const char byte : bytes) {
        read(bytewise, byte, 1);
        drain(bytewise, bytewiseLines);
      }
    }
    EXPECT_EQ(fedLines, row.lines) << row.name;
    EXPECT_EQ(bytewiseLines, row.lines) << row.name << ", byte by byte";
    for (LineFraming* framing : {&fed, &bytewise}) {
      EXPECT_EQ(framing->pending(), row.leftover.size()) << row.name;
      const auto leftover = framing->finish();
      EXPECT_EQ(leftover ? leftover->view() : "", row.leftover) << row.name;
      EXPECT_FALSE(framing->finish()) << row.name;
    }
  }
}

TEST(LineFraming, ReadsGrowWithTheLineAndAreSmallAgainBehindIt) {
  LineFraming framing;
  std::vector<std::string> lines;
  const std::size_t first = framing.room().size;
  std::size_t total = 0;
  while (total < (4U << 20)) {
    const std::size_t count = framing.room().size;
    read(framing, 'x', count);
    total += count;
    drain(framing, lines);
  }
  EXPECT_GE(framing.room().size, 256 * first);
  framing.feed("\n");
  drain(framing, lines);
  EXPECT_EQ(lines, std::vector<std::string>{std::string(total, 'x')});
  EXPECT_EQ(framing.room().size, first);
}

}  // namespace
}  // namespace vell::json

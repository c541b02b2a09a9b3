#include "headless/server/line_buffer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::headless {
namespace {

struct Case {
  std::vector<std::string> reads;
  bool ends;
  std::vector<std::string> lines;
};

TEST(LineBuffer, CutsAStreamIntoLines) {
  const std::vector<Case> cases = {
      {{"one\n"}, false, {"one"}},
      {{"one\ntwo\n"}, false, {"one", "two"}},
      {{"one\ntw", "o\nthree"}, false, {"one", "two"}},
      {{"one\ntw", "o\nthree"}, true, {"one", "two", "three"}},
      {{"o", "n", "e", "\n", "\n"}, false, {"one", ""}},
      {{"one\n"}, true, {"one"}},
      {{""}, true, {}},
  };
  for (const Case& c : cases) {
    LineBuffer buffer;
    std::vector<std::string> lines;
    const auto take = [&] {
      while (buffer.hasLine()) lines.emplace_back(buffer.takeLine());
    };
    for (const std::string& read : c.reads) {
      buffer.append(read);
      take();
    }
    if (c.ends) buffer.end();
    take();
    EXPECT_EQ(lines, c.lines) << c.reads.front();
  }
}

TEST(LineBuffer, KeepsLinesNotTakenWhenMoreComes) {
  LineBuffer buffer;
  buffer.append("one\ntwo\nthr");
  EXPECT_EQ(buffer.takeLine(), "one");
  buffer.append("ee\n");
  EXPECT_EQ(buffer.takeLine(), "two");
  EXPECT_EQ(buffer.takeLine(), "three");
  EXPECT_EQ(buffer.size(), 0U);
}

}  // namespace
}  // namespace vell::headless

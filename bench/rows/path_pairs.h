#pragma once

namespace vell::bench {

/// An outline path and the XPath expression that asks for the same.
struct PathPair {
  const char* ours;
  const char* xpath;
};

inline constexpr PathPair pathPairs[] = {
    {"//task", "//task"},
    {"/heading/task", "/heading/task"},
    {"//task @done", "//task[@done]"},
    {"//task not @done", "//task[not(@done)]"},
    {"//task @priority > 2", "//task[@priority > 2]"},
    {"//* @color = \"red\"", "//*[@color = 'red']"},
    {"//task (@color = \"red\" or @done) and @priority", "//task[(@color = 'red' or @done) and @priority]"},
    {"//heading/following-sibling::task", "//heading/following-sibling::task"},
    {"//task @done/..", "//task[@done]/.."},
    {"//heading/descendant::task @done", "//heading/descendant::task[@done]"},
    {"//heading union //task @done", "//heading | //task[@done]"},
    {"//* count(child::*) > 6", "//*[count(child::*) > 6]"},
};

}  // namespace vell::bench

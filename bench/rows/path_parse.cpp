// Parsing a dozen paths, beside an XPath parser on the same questions.

#include <libxml/xpath.h>

#include <cmath>
#include <functional>
#include <stdexcept>

#include "bench/clock.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "outline_path/parse.h"

namespace vell::bench {
namespace {

/// An outline path and the XPath expression that asks for the same.
struct PathPair {
  const char* ours;
  const char* xpath;
};

constexpr PathPair pathPairs[] = {
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

void parseOurs(const std::string& path) {
  if (outline_path::parse(path).error) throw std::runtime_error("no path: " + path);
}

void parseLibxml2(const std::string& path) {
  xmlXPathFreeCompExpr(xmlXPathCompile(reinterpret_cast<const xmlChar*>(path.c_str())));
}

/// The geometric mean over all paths of what one takes.
std::function<double()> meanOf(void (*parse)(const std::string&), const char* PathPair::*language) {
  return [=] {
    double logarithms = 0;
    for (const PathPair& pair : pathPairs) {
      const std::string path = pair.*language;
      logarithms += std::log(shortestSeconds([&] { parse(path); }));
    }
    return std::exp(logarithms / static_cast<double>(std::size(pathPairs)));
  };
}

}  // namespace

void pathParse(Table& table) {
  const auto times = medians(
      {{"vell", meanOf(parseOurs, &PathPair::ours)}, {"libxml2", meanOf(parseLibxml2, &PathPair::xpath)}},
      15);
  table.add({"parse a path, mean of a dozen", times[0], "libxml2 xmlXPathCompile", times[1], atMost(6)});
}

}  // namespace vell::bench

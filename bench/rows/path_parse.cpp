// Parsing a dozen paths, beside XPath parsers on the same questions; how tracing and size weigh.

#include <libxml/xpath.h>

#include <cmath>
#include <functional>
#include <pugixml.hpp>
#include <stdexcept>

#include "bench/clock.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/rows/path_pairs.h"
#include "outline_path/parse.h"

namespace vell::bench {
namespace {

void parseOurs(const std::string& path) {
  if (outline_path::parse(path).error) throw std::runtime_error("no path: " + path);
}

void parseTraced(const std::string& path) {
  if (outline_path::parseTraced(path).error) throw std::runtime_error("no path: " + path);
}

void parsePugixml(const std::string& path) { const pugi::xpath_query query(path.c_str()); }

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

std::string repeated(int count, const std::string& piece) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

std::string nested(int levels) { return "//* " + repeated(levels, "(not ") + "@a" + repeated(levels, ")"); }
std::string counted(int levels) {
  return repeated(levels, "//* (count(") + "//*" + repeated(levels, ") > 0)");
}
std::string terms(int count) { return "//* @a" + repeated(count - 1, " and @a"); }
std::string steps(int count) { return repeated(count, "/child::task"); }

void growth(Table& table, const std::string& what, std::string (*path)(int)) {
  const auto parsing = [path](int size) {
    return [text = path(size)] { return shortestSeconds([&] { parseOurs(text); }); };
  };
  const auto times = medians({{"8", parsing(8)}, {"32", parsing(32)}}, 15);
  table.add({"parse 32 " + what, times[1], "8 of them", times[0], atMost(4)});
}

}  // namespace

void pathParse(Table& table) {
  const auto times = medians({{"vell", meanOf(parseOurs, &PathPair::ours)},
                              {"pugixml", meanOf(parsePugixml, &PathPair::xpath)},
                              {"libxml2", meanOf(parseLibxml2, &PathPair::xpath)},
                              {"traced", meanOf(parseTraced, &PathPair::ours)}},
                             15);
  const std::string work = "parse a path, mean of a dozen";
  table.add({work, times[0], "pugixml xpath_query", times[1], atMost(1)});
  table.add({work, times[0], "libxml2 xmlXPathCompile", times[2], {}});
  table.add({work + ", traced", times[3], "the same without trace", times[0], atMost(4)});
  growth(table, "nested groups", nested);
  growth(table, "nested counts", counted);
  growth(table, "terms", terms);
  growth(table, "steps", steps);
}

}  // namespace vell::bench

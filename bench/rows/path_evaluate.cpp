// Evaluating ten paths over a million rows in the headless application, beside XPath on the same tree.

#include <algorithm>
#include <array>
#include <cmath>
#include <pugixml.hpp>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/clock.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "evaluation/evaluate.h"
#include "outline_path/parse.h"

namespace vell::bench {
namespace {

using document::RowType;

constexpr int manyRows = 1'000'000;
constexpr int fewRows = 10'000;

/// An outline path and the XPath expression that asks for the same.
struct PathPair {
  const char* ours;
  const char* xpath;
};

constexpr PathPair evaluated[] = {
    {"//*", "//*"},
    {"//task", "//task"},
    {"//task @done", "//task[@done]"},
    {"//task @done = \"true\" and @priority", "//task[@done = 'true' and @priority]"},
    {"//* @priority < 3", "//*[@priority < 3]"},
    {"//* @text contains \"needle\"", "//*[contains(@text, 'needle')]"},
    {"//heading/task @done/..", "//heading/task[@done]/.."},
    {"//heading/parent::*", "//heading/parent::*"},
    {"//* count(child::*) > 3", "//*[count(child::*) > 3]"},
    {"//task union //heading", "//task | //heading"},
};

struct TextWriter : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }

  std::string text;
};

/// The same rows twice, as an outline and as elements.
class Trees {
 public:
  explicit Trees(int rowCount) {
    std::mt19937 random(1);
    pugi::xml_document built;
    std::vector<Twin> open{{&outline.root(), built}};
    for (int i = 0; i < rowCount; ++i) {
      open.resize(1 + random() % std::min<std::size_t>(open.size(), 6));
      open.push_back(add(open.back(), random));
    }
    outline.number();
    // Elements that were parsed from one text know their order from their place in it.
    TextWriter written;
    built.save(written, "", pugi::format_raw);
    document.load_string(written.text.c_str());
  }

  document::Outline outline;
  pugi::xml_document document;

 private:
  struct Twin {
    document::Row* row;
    pugi::xml_node node;
  };

  Twin add(const Twin& parent, std::mt19937& random) {
    const auto type = std::array{RowType::task, RowType::heading, RowType::body}[random() % 3];
    std::string text = "some words of row " + std::to_string(random() % 100000);
    if (random() % 50 == 0) text += " and a needle";
    document::Attributes attributes;
    if (random() % 3 == 0) attributes.set("done", random() % 2 == 0 ? "true" : "false");
    if (random() % 4 == 0) attributes.set("priority", std::to_string(random() % 9));
    document::Row* row = outline.create(type, document::Text(text), 0);
    outline.insert(*row, *parent.row);
    pugi::xml_node node = pugi::xml_node(parent.node).append_child(std::string(name(type)).c_str());
    for (const auto& attribute : attributes) {
      node.append_attribute(attribute.key.c_str()) = attribute.value.c_str();
    }
    node.append_attribute("text") = text.c_str();
    outline.setAttributes(*row, std::move(attributes));
    return {row, node};
  }
};

std::size_t findOurs(const Trees& trees, const char* path) {
  const auto parsed = outline_path::parse(path);
  return evaluation::evaluateRows(*parsed.expression, trees.outline, {evaluation::SystemClock()}).size();
}

std::size_t findTheirs(const Trees& trees, const char* xpath) {
  pugi::xpath_node_set nodes = trees.document.select_nodes(xpath);
  nodes.sort();  // a path gives its rows in document order
  return nodes.size();
}

}  // namespace

void pathEvaluate(Table& table) {
  const Trees trees(manyRows);
  const Trees small(fewRows);
  double ours = 0;
  double theirs = 0;
  for (const PathPair& pair : evaluated) {
    if (findOurs(trees, pair.ours) != findTheirs(trees, pair.xpath))
      throw std::runtime_error(std::string("not the same rows: ") + pair.ours);
    const auto times =
        medians({{"vell", [&] { return secondsFor(1, [&] { findOurs(trees, pair.ours); }); }},
                 {"pugixml", [&] { return secondsFor(1, [&] { findTheirs(trees, pair.xpath); }); }},
                 {"small", [&] { return secondsFor(10, [&] { findOurs(small, pair.ours); }); }}},
                3);
    table.add({pair.ours, times[0], "pugixml, a million rows", times[1], atMost(1.5)});
    table.add({pair.ours, times[0], "vell, 10,000 rows", times[2], Target{}, Unit::seconds,
               double{manyRows} / fewRows});
    ours += std::log(times[0]);
    theirs += std::log(times[1]);
  }
  const auto count = static_cast<double>(std::size(evaluated));
  table.add(
      {"geometric mean of the ten", std::exp(ours / count), "pugixml", std::exp(theirs / count), atMost(1)});
}

}  // namespace vell::bench

// Random paths over random outlines, against XPath, which can say the same.
#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <random>

#include "tests/evaluation/support.h"

namespace vell::evaluation {
namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  std::size_t below(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine_);
  }
  std::string oneOf(std::initializer_list<const char*> items) { return items.begin()[below(items.size())]; }
  template <class Item, std::size_t count>
  const Item& in(const Item (&items)[count]) {
    return items[below(count)];
  }

 private:
  std::mt19937 engine_;
};

std::string randomOutline(Random& random) {
  std::string lines;
  std::size_t level = 0;
  for (std::size_t i = 0, count = 1 + random.below(25); i < count; ++i) {
    lines +=
        std::string(2 * level, ' ') + random.oneOf({"task", "heading", "body"}) + " r" + std::to_string(i);
    if (random.below(3) == 0) lines += " @a=" + std::to_string(random.below(4));
    if (random.below(3) == 0) lines += " @b";
    lines += '\n';
    level = random.below(level + 2);
  }
  return lines;
}

/// The same in our language and in XPath.
struct Spelled {
  std::string ours, theirs;
};

const std::string kAxes[] = {"child::",
                             "parent::",
                             "self::",
                             "ancestor::",
                             "ancestor-or-self::",
                             "descendant::",
                             "following::",
                             "preceding::",
                             "following-sibling::",
                             "preceding-sibling::",
                             "descendant-or-self::"};

/// Ways of beginning a step that have a longer form in XPath.
const Spelled kShortcuts[] = {
    {"//", "/descendant-or-self::"}, {"/..", "/parent::"}, {"/.", "/self::"}, {"/", "/child::"}};

const Spelled kSlices[] = {
    {"[0]", "[1]"},
    {"[2]", "[3]"},
    {"[7]", "[8]"},
    {"[-1]", "[last()]"},
    {"[1:]", "[position() > 1]"},
    {"[:-1]", "[position() < last()]"},
    {"[-2:2]", "[position() > last() - 2 and position() <= 2]"},
    {"[1:3]", "[position() > 1 and position() <= 3]"},
};

const Spelled kTests[] = {
    {"@b", "@b"},
    {R"(@a = "1")", "@a = '1'"},
    {"@a >= 2", "@a >= 2"},
    {R"("r1")", "contains(@text, 'r1')"},
    {R"(@text beginswith "r2")", "starts-with(@text, 'r2')"},
};

/// What both languages write in one way: how many rows a path leads to, and places among them.
std::string randomComparison(Random& random) {
  if (random.below(2) == 0)
    return "position() " + random.oneOf({"=", "!=", "<", "<=", ">", ">="}) + " " +
           random.oneOf({"1", "2", "3", "last()", "last() - 1", "1.5"});
  std::string path = random.in(kAxes) + random.oneOf({"*", "task"});
  if (random.below(3) == 0) path += "/" + random.in(kAxes) + "*";
  return "count(" + path + ") > " + std::to_string(random.below(4));
}

Spelled randomPredicate(Random& random, int depth) {
  const std::size_t kind = random.below(depth > 0 ? 11 : 7);
  if (kind < 5) return random.in(kTests);
  if (kind < 7) {
    const std::string comparison = randomComparison(random);
    return {comparison, comparison};
  }
  const auto [ours, theirs] = randomPredicate(random, depth - 1);
  if (kind == 7) return {"not (" + ours + ")", "not(" + theirs + ")"};
  const auto [others, theirOthers] = randomPredicate(random, depth - 1);
  const std::string op = random.oneOf({" and ", " or "});
  return {"((" + ours + ")" + op + "(" + others + "))", "(" + theirs + op + theirOthers + ")"};
}

Spelled randomPath(Random& random) {
  Spelled path{"//*", "/descendant-or-self::*"};
  for (std::size_t i = 0, count = 1 + random.below(3); i < count; ++i) {
    const std::string axis = "/" + random.in(kAxes);
    const Spelled begin = random.below(3) == 0 ? random.in(kShortcuts) : Spelled{axis, axis};
    const std::string test = random.oneOf({"*", "task", "heading", "body"});
    path.ours += begin.ours + test;
    path.theirs += begin.theirs + test;
    if (random.below(2) == 0) {
      const Spelled predicate = randomPredicate(random, 2);
      path.ours += " " + predicate.ours;
      path.theirs += "[" + predicate.theirs + "]";
    }
    if (random.below(3) == 0) {
      const Spelled& slice = random.in(kSlices);
      path.ours += slice.ours;
      path.theirs += slice.theirs;
    }
  }
  return path;
}

Spelled randomSet(Random& random, int depth) {
  if (depth == 0 || random.below(2) == 0) return randomPath(random);
  const auto [ours, theirs] = randomSet(random, depth - 1);
  const auto [others, theirOthers] = randomSet(random, depth - 1);
  const std::string isIn = "count(. | " + theirOthers + ") = count(" + theirOthers + ")";
  const Spelled sets[] = {
      {"(" + ours + " union " + others + ")", "(" + theirs + " | " + theirOthers + ")"},
      {"(" + ours + " except " + others + ")", "(" + theirs + ")[not(" + isIn + ")]"},
      {"(" + ours + " intersect " + others + ")", "(" + theirs + ")[" + isIn + "]"},
  };
  return random.in(sets);
}

void copyRows(const Row& from, pugi::xml_node to) {
  for (const Row* row = from.firstChild(); row != nullptr; row = row->next()) {
    pugi::xml_node node = to.append_child(std::string(name(row->type())).c_str());
    for (const Attribute& attribute : row->attributes()) {
      node.append_attribute(attribute.key.c_str()) = attribute.value.c_str();
    }
    node.append_attribute("text") = row->text().string().c_str();
    copyRows(*row, node);
  }
}

TEST(Evaluation, AgreesWithXPath) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    Random random(seed);
    const auto outline = outlineOf(randomOutline(random));
    pugi::xml_document document;
    copyRows(outline->root(), document);
    const Spelled path = randomSet(random, 2);
    std::string theirs;
    pugi::xpath_node_set nodes = document.select_nodes(path.theirs.c_str());
    nodes.sort();
    for (const pugi::xpath_node& node : nodes) {
      theirs += (theirs.empty() ? "" : " ") + std::string(node.node().attribute("text").value());
    }
    ASSERT_EQ(selected(*outline, path.ours), theirs)
        << "seed " << seed << ": " << path.ours << " = " << path.theirs;
  }
}

// Were any of these quadratic, it would take too long.
TEST(Evaluation, TakesOnePassForEachStep) {
  Outline outline;
  Row* parent = &outline.root();
  for (int i = 0; i < 50000; ++i) {
    Row* row = outline.create(RowType::task, Text("row"), 0);
    outline.insert(*row, *parent);
    if (i % 100 == 99) parent = i % 10000 == 9999 ? &outline.root() : row;
  }
  for (const char* path : {"//*//*//*",
                           "//*/following::*",
                           "//*/preceding::*",
                           "//*/ancestor-or-self::*/descendant::*",
                           "//*/following-sibling::*",
                           "//*/preceding-sibling::*",
                           "//*/../*/..",
                           "//* union //* union //*",
                           "//*/following::*[0]",
                           "//* count(//*) > 5",
                           "//*/descendant-or-self::*[:2]",
                           "//*/child::*[-1]",
                           "//*/descendant::*[-1]",
                           "//*/following::*[3:]",
                           "//*/preceding::* not @a[-2:]",
                           "//*//*[1:-1]",
                           "//* nth-of-type() > 2",
                           "//* only-of-type() = false",
                           "//*/following::* position() = 2",
                           "//*/preceding::* \"row\" and position() < last()",
                           "//*/following-sibling::* position() = last()",
                           "//* count(following::task) > 5",
                           "//* count(preceding::*) > 5",
                           "//* count(preceding-sibling::*) > 5",
                           "//* count(../*) > 5",
                           "//* count(../*/*) > 5",
                           "//* boolean(.//task not @a) = true",
                           "//* count(//* union //task/..) > 5",
                           "//*/following-sibling::*[-1]",
                           "//*/preceding-sibling::* \"row\"[1:]",
                           "//* count(//*[-1]) > 0"}) {
    const std::string rows = selected(outline, path, nullptr, {.steps = 10'000'000});
    EXPECT_TRUE(rows.starts_with("row")) << path << ": " << rows;
  }
}

TEST(Evaluation, ComesToAnEnd) {
  Outline outline;
  for (int i = 0; i < 3000; ++i)
    outline.insert(*outline.create(RowType::task, Text(std::string(20, 'a')), 0), outline.root());
  const Selection rows[] = {
      {"//*/following::* position() != 2",
       "error: it takes too long, at its step /following::* position() != 2"},
      {"//* count(following::*/..) = 1/*", "error: it takes too long, at its step /following::*"},
      {"//* count(//* intersect ./*) = 1",
       "error: it takes too long, at its step //* count(//* intersect ./*) = 1"},
      {"//* @text matches \"(a?){12}[bc]\"",
       "error: it takes too long, at its step //* @text matches \"(a?){12}[bc]\""},
  };
  for (const Selection& row : rows)
    EXPECT_EQ(selected(outline, row.path, nullptr, {.steps = 100'000}), row.rows) << row.path;
  int pauses = 0;
  const auto endAtThird = [&] {
    if (++pauses == 3) throw std::out_of_range("ended");
  };
  EXPECT_THROW(selected(outline, rows[0].path, nullptr, {.pause = endAtThird}), std::out_of_range);
  EXPECT_EQ(pauses, 3);
}

}  // namespace
}  // namespace vell::evaluation

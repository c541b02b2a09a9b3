// Random paths over random outlines, against an evaluator that asks of every pair of rows whether they stand
// on the axis, and against XPath where both languages say the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <pugixml.hpp>
#include <random>
#include <set>

#include "outline_path/parse.h"
#include "outline_path/print.h"
#include "tests/evaluation/support.h"

namespace vell::evaluation {
namespace {

using outline_path::Axis;
using outline_path::TypeTest;

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  std::size_t below(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine_);
  }
  template <std::size_t count>
  std::string oneOf(const char* const (&items)[count]) {
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

/// One language's spelling of a random path, and the same in XPath.
struct Spelled {
  std::string ours, theirs;
};

const char* const kAxes[] = {"child::",
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

Spelled randomPredicate(Random& random, int depth) {
  switch (random.below(depth > 0 ? 11 : 7)) {
    case 0:
      return {"@b", "@b"};
    case 1:
      return {"@a = \"1\"", "@a = '1'"};
    case 2:
      return {"@a >= 2", "@a >= 2"};
    case 3:
      return {"\"r1\"", "contains(@text, 'r1')"};
    case 4:
      return {"@text beginswith \"r2\"", "starts-with(@text, 'r2')"};
    case 5: {
      const std::string path = kAxes[random.below(11)] + random.oneOf({"*", "task"}) +
                               (random.below(3) == 0 ? "/" + std::string(kAxes[random.below(11)]) + "*" : "");
      const std::string count = "count(" + path + ") > " + std::to_string(random.below(4));
      return {count, count};
    }
    case 6: {
      const std::string place = "position() " + random.oneOf({"=", "!=", "<", "<=", ">", ">="}) + " " +
                                random.oneOf({"1", "2", "3", "last()", "last() - 1", "1.5"});
      return {place, place};
    }
    case 7: {
      const Spelled operand = randomPredicate(random, 0);
      return {"not (" + operand.ours + ")", "not(" + operand.theirs + ")"};
    }
    default: {
      const Spelled left = randomPredicate(random, depth - 1), right = randomPredicate(random, depth - 1);
      const std::string op = random.oneOf({" and ", " or "});
      return {"((" + left.ours + ")" + op + "(" + right.ours + "))",
              "(" + left.theirs + op + right.theirs + ")"};
    }
  }
}

Spelled randomPath(Random& random) {
  Spelled path{"/descendant-or-self::*", "/descendant-or-self::*"};
  for (std::size_t i = 0, count = 1 + random.below(3); i < count; ++i) {
    const std::string axis = kAxes[random.below(11)], test = random.oneOf({"*", "task", "heading", "body"});
    path.ours += "/" + axis + test;
    path.theirs += "/" + axis + test;
    if (random.below(2) == 0) {
      const Spelled predicate = randomPredicate(random, 2);
      path.ours += " " + predicate.ours;
      path.theirs += "[" + predicate.theirs + "]";
    }
    if (random.below(4) == 0) {
      const std::size_t index = random.below(3);
      path.ours += "[" + std::to_string(index) + "]";
      path.theirs += "[" + std::to_string(index + 1) + "]";
    }
  }
  return path;
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
  for (unsigned seed = 0; seed < 1000; ++seed) {
    Random random(seed);
    const auto outline = outlineOf(randomOutline(random));
    pugi::xml_document document;
    copyRows(outline->root(), document);
    const Spelled path = randomPath(random);
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

/// Evaluates by definition: every row is asked about every context.
class Naive {
 public:
  explicit Naive(const Outline& outline) : outline_(outline) {
    const Row& root = outline.root();
    for (const Row* row = root.firstChild(); row != nullptr; row = nextInOrder(row, &root))
      all_.push_back(row);
  }

  std::set<const Row*> select(const outline_path::PathExpression& path) const {
    if (const auto* plain = std::get_if<outline_path::Path>(&path.node)) return steps(*plain);
    if (const auto* group = std::get_if<outline_path::PathGroup>(&path.node)) return select(*group->inner);
    std::set<const Row*> found;
    for (const Row* row : all_) {
      if (isInSet(path, row)) found.insert(row);
    }
    return found;
  }

 private:
  bool isInSet(const outline_path::PathExpression& path, const Row* row) const {
    const auto isIn = [&](const auto& side) { return select(*side).count(row) != 0; };
    if (const auto* both = std::get_if<outline_path::Union>(&path.node))
      return isIn(both->left) || isIn(both->right);
    if (const auto* both = std::get_if<outline_path::Except>(&path.node))
      return isIn(both->left) && !isIn(both->right);
    const auto& both = std::get<outline_path::Intersect>(path.node);
    return isIn(both.left) && isIn(both.right);
  }

  std::set<const Row*> steps(const outline_path::Path& path) const {
    std::set<const Row*> contexts{&outline_.root()};
    for (const auto& step : path.steps()) {
      std::set<const Row*> next;
      for (const Row* context : contexts) take(step, *context, next);
      contexts = next;
    }
    return contexts;
  }

  void take(const outline_path::Step& step, const Row& context, std::set<const Row*>& into) const {
    std::vector<const Row*> taken;
    for (const Row* row : all_) {
      const TypeTest test = *step.filter().typeTest;
      const bool passes = test == TypeTest::any || spelling(test) == name(row->type());
      if (passes && isOn(step.axis(), context, *row)) taken.push_back(row);
    }
    const std::set<Axis> backward{Axis::ancestor, Axis::ancestorOrSelf, Axis::preceding,
                                  Axis::precedingSibling};
    if (backward.count(step.axis()) != 0) std::reverse(taken.begin(), taken.end());
    const auto count = static_cast<std::int64_t>(taken.size());
    for (std::int64_t i = 0; i < count; ++i) {
      if (isInSlice(step.slice(), i, count)) into.insert(taken[static_cast<std::size_t>(i)]);
    }
  }

  static bool isInSlice(const std::optional<outline_path::Slice>& slice, std::int64_t i, std::int64_t count) {
    if (!slice) return true;
    const auto place = [&](std::int64_t bound) { return bound < 0 ? count + bound : bound; };
    if (const auto* index = std::get_if<outline_path::SliceIndex>(&*slice)) return place(index->index) == i;
    const auto& range = std::get<outline_path::SliceRange>(*slice);
    return (!range.start || i >= place(*range.start)) && (!range.end || i < place(*range.end));
  }

  bool isOn(Axis axis, const Row& context, const Row& row) const {
    const bool isSame = &context == &row, isBelow = isAncestor(context, row),
               isAbove = isAncestor(row, context);
    const bool isAfter = context.order() < row.order();
    switch (axis) {
      case Axis::child:
        return row.parent() == &context;
      case Axis::parentShortcut:
        return context.parent() == &row;
      case Axis::selfShortcut:
        return isSame;
      case Axis::descendantOrSelfShortcut:
        return isSame || isBelow;
      case Axis::descendant:
        return isBelow;
      case Axis::ancestor:
        return isAbove;
      case Axis::ancestorOrSelf:
        return isAbove || isSame;
      case Axis::following:
        return isAfter && !isBelow;
      case Axis::preceding:
        return !isAfter && !isSame && !isAbove;
      case Axis::followingSibling:
        return row.parent() == context.parent() && isAfter;
      case Axis::precedingSibling:
        return row.parent() == context.parent() && !isAfter && !isSame;
      default:
        return false;
    }
  }

  const Outline& outline_;
  std::vector<const Row*> all_;
};

std::string randomOurs(Random& random, int depth) {
  if (depth > 0 && random.below(3) == 0) {
    const std::string op = random.oneOf({" union ", " except ", " intersect "});
    return "(" + randomOurs(random, depth - 1) + op + randomOurs(random, depth - 1) + ")";
  }
  std::string path = "//" + random.oneOf({"*", "task", "heading"});
  for (std::size_t i = random.below(4); i > 0; --i) {
    const bool forward = random.below(2) == 0;
    path += forward ? random.oneOf({"/", "//", "/following::", "/following-sibling::", "/descendant::"})
                    : random.oneOf({"/..", "/.", "/ancestor::", "/ancestor-or-self::", "/preceding::",
                                    "/preceding-sibling::"});
    path += random.oneOf({"*", "task", "heading", "body"});
    if (random.below(3) == 0)
      path += random.oneOf({"[0]", "[-1]", "[1:]", "[:-1]", "[-2:2]", "[1:3]", "[7]"});
  }
  return path;
}

TEST(Evaluation, AgreesWithTheDefinition) {
  for (unsigned seed = 0; seed < 1000; ++seed) {
    Random random(seed);
    const auto outline = outlineOf(randomOutline(random));
    const std::string text = randomOurs(random, 2);
    const auto parsed = outline_path::parse(text);
    ASSERT_FALSE(parsed.error) << text;
    const Rows rows = evaluateRows(*parsed.expression, *outline, {SystemClock()});
    const auto wanted = Naive(*outline).select(std::get<outline_path::PathExpression>(*parsed.expression));
    ASSERT_EQ(std::set<const Row*>(rows.begin(), rows.end()), wanted) << "seed " << seed << ": " << text;
    ASSERT_EQ(rows.size(), wanted.size()) << "a row twice, seed " << seed << ": " << text;
    for (std::size_t i = 1; i < rows.size(); ++i) ASSERT_LT(rows[i - 1]->order(), rows[i]->order()) << text;
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

// Depth limits at their edges, and texts that naive backtracking does not get through.
#include <gtest/gtest.h>

#include <functional>

#include "outline_path/parse.h"
#include "outline_path/print.h"
#include "platform/thread.h"

namespace vell::outline_path {
namespace {

std::string repeat(std::string_view text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

struct Nesting {
  const char* name;
  /// A text of so many levels.
  std::function<std::string(std::size_t)> text;
};

const Nesting kNestings[] = {
    {"path groups", [](std::size_t n) { return repeat("(", n) + "//a" + repeat(")", n); }},
    {"value groups", [](std::size_t n) { return repeat("(", n) + "1" + repeat(")", n); }},
    {"predicate groups",
     [](std::size_t n) { return "//* " + repeat("(", n - 1) + "not @a" + repeat(")", n - 1); }},
    {"groups of an attribute", [](std::size_t n) { return "//* " + repeat("(", n) + "@a" + repeat(")", n); }},
    {"function calls", [](std::size_t n) { return repeat("f(", n) + repeat(")", n); }},
    {"calls of paths", [](std::size_t n) { return repeat("//* f(", n) + "." + repeat(") = 1", n); }},
    {"negations", [](std::size_t n) { return repeat("-", n) + "1"; }},
    {"nots", [](std::size_t n) { return "//* " + repeat("not ", n) + "@a"; }},
    {"ands", [](std::size_t n) { return "//* @a" + repeat(" and @a", n); }},
    {"ors", [](std::size_t n) { return "//* @a" + repeat(" or @a", n); }},
    {"unions", [](std::size_t n) { return "//a" + repeat(" union //a", n); }},
    {"excepts", [](std::size_t n) { return "//a" + repeat(" except //a", n); }},
    {"intersects", [](std::size_t n) { return "//a" + repeat(" intersect //a", n); }},
    {"sums", [](std::size_t n) { return "1" + repeat(" + 1", n); }},
    {"products", [](std::size_t n) { return "1" + repeat(" * 1", n); }},
    {"quotients in a comparison", [](std::size_t n) { return "//* @a" + repeat("/@a", n) + " = 1"; }},
};

TEST(Depth, IsLimitedForEveryConstructAndFitsTheStack) {
  for (const Nesting& nesting : kNestings) {
    SCOPED_TRACE(nesting.name);
    platform::onStackOf(8 << 20, [&] {  // that of a main thread
      const std::string deepest = nesting.text(1000);
      const ParseResult allowed = parse(deepest, {true});
      ASSERT_FALSE(allowed.error) << render(*allowed.error, deepest);
      const std::string printed = print(*allowed.expression);
      EXPECT_EQ(print(*parse(printed, {true}).expression), printed);
      EXPECT_FALSE(treeText(*allowed.expression).empty());
    });
    for (const std::size_t levels : {1001U, 5000U}) {
      const std::string text = nesting.text(levels);
      const ParseResult refused = parse(text, {true});
      ASSERT_TRUE(refused.error);
      EXPECT_EQ(refused.error->kind, Diagnostic::Kind::tooDeep);
      EXPECT_NE(render(*refused.error, text).find("nested more than 1000 levels deep"), std::string::npos);
    }
  }
}

TEST(Depth, DoesNotLimitFlatLists) {
  const ParseResult steps = parse("/" + repeat("/task @b/..", 50000));
  ASSERT_FALSE(steps.error);
  EXPECT_EQ(parse(print(*steps.expression)).expression, steps.expression);
  const Expression copy = *steps.expression;
  EXPECT_EQ(treeText(copy), treeText(*steps.expression));
  const std::string arguments = "f(1" + repeat(", .", 100000) + ")";
  EXPECT_EQ(print(*parse(arguments, {true}).expression), arguments);
}

struct Work {
  const char* name;
  /// A text of a size in proportion to `n`.
  std::function<std::string(std::size_t)> text;
};

const Work kWork[] = {
    {"steps", [](std::size_t n) { return "/" + repeat("/task @b/..", n); }},
    {"groups around a sum",
     [](std::size_t n) { return "//* " + repeat("(", n) + repeat("@a + ", 50) + "1" + repeat(") > 0", n); }},
    {"compared groups",
     [](std::size_t n) { return "//* " + repeat("((@a or @b) = ", n) + "1" + repeat(")", n); }},
    {"counts in counts",
     [](std::size_t n) { return "//* " + repeat("(count(//* ", n / 2) + "@a" + repeat(") > 0)", n / 2); }},
    {"calls of paths", [](std::size_t n) { return "//* " + repeat("f(.a/", n) + "x" + repeat(" > 0)", n); }},
    {"calls that fail", [](std::size_t n) { return repeat("f(.a/f(X) > 0 ?, ", n); }},
    {"steps like a quotient", [](std::size_t n) { return "//* @a" + repeat("/@a", n); }},
    {"groups like a quotient", [](std::size_t n) { return "//* @a" + repeat("/(@a)", n); }},
    {"groups like a quotient in a comparison",
     [](std::size_t n) { return "//* (@a or @b)" + repeat("/(@a or @b)", n) + "/@c = 1"; }},
    {"a quotient that ends with a group",
     [](std::size_t n) { return "//* @a" + repeat("/@a", n) + "/(@a or @b)/@c = 1"; }},
    {"strings like a quotient in a comparison",
     [](std::size_t n) { return "//* @a" + repeat("/\"" + std::string(20, 'x') + "\"", n) + " = ?"; }},
    {"paths side by side", [](std::size_t n) { return repeat("//a ", n); }},
    {"open brackets", [](std::size_t n) { return std::string(n, '('); }},
    {"axes", [](std::size_t n) { return repeat("a::", n); }},
};

TEST(Effort, IsLinear) {
  const auto steps = [](const std::string& text) { return parseTraced(text, {true}).traceContext->steps; };
  for (const Work& work : kWork) {
    EXPECT_LE(steps(work.text(800)), 2.1 * static_cast<double>(steps(work.text(400)))) << work.name;
  }
}

TEST(Effort, AllowsLongTexts) {
  for (const std::string& text :
       {"//* \"" + std::string(200000, '\\'), "//a" + std::string(200000, ' ') + "x",
        std::string(200000, '/'), std::string(200000, '('), std::string(200000, 'a'),
        std::string(200000, '9'), "//a[" + std::string(200000, '9'), "//* @a" + repeat("/(@a)", 20000)}) {
    parse(text, {true});
  }
}

}  // namespace
}  // namespace vell::outline_path

// What a trace holds: every label of the grammar, nested as the rules are, and errors with their reasons.
#include <gtest/gtest.h>

#include <set>

#include "outline_path/parse.h"

namespace vell::outline_path {
namespace {

const char* const kLabels[] = {
    "OutlinePathParser",
    // Paths
    "PathExpressionParser", "PathExpressionUnionParser", "PathExpresionExceptParser",
    "PathExpressionIntersectParser", "PathExpressionGroupParser", "PathParser", "AbsolutePathParser",
    "RelativePathParser",
    // Steps
    "StepParser", "StepAxisParser", "StepFilterParser", "TypeTestParser", "SliceParser",
    // Predicates
    "PredicateExpressionParser", "PredicateExpressionOrParser", "PredicateExpressionAndParser",
    "PredicateExpressionTightParser", "PredicateExpressionNotParser", "PredicateExpressionGroupParser",
    "PredicateExpressionComparisonParser", "PredicateExpressionContainsAttributeParser",
    "PredicateExpressionContainsTextParser", "RelationParser", "RelationOpParser", "RelationModifierParser",
    // Values
    "ValueExpressionParser", "ValueExpressionAdditiveParser", "ValueExpressionMultiplicativeParser",
    "ValueExpressionUnaryParser", "ValueExpressionGroupParser", "AdditiveOpParser", "MultiplicativeOpParser",
    "UnaryOpParser", "PrimaryExprParser", "NumberParser", "BooleanParser", "AttributeParser",
    "VariableParser", "FunctionCallParser", "ArgumentParser", "PathArgumentParser", "LiteralParser",
    "UnquotedParser", "UnquotedInnerParser", "NullParser", "NameParser", "JSONString", "UnescapedString",
    "EscapedSingleChar", "LiteralUnicodeCodePoint",
    // Words and signs
    "keyword.step.separator", "keyword.step.slice", "keyword.type-test", "keyword.node-type",
    "keyword.op.set", "keyword.op.predicate", "keyword.op.relation", "keyword.relation.modifier",
    "keyword.op.additive", "keyword.op.multiplicative", "keyword.op.unary", "keyword.attribute.op",
    "keyword.variable.op", "group.open.path", "group.close.path", "group.open.predicate",
    "group.close.predicate", "group.open.value", "group.close.value", "group.open.function",
    "group.close.function", "group.open.slice", "group.close.slice", "syntax.comma.function.arguments",
    "syntax.colon.slice"};

TEST(Trace, ShowsEveryLabel) {
  const TracedParseResult result = parseTraced(
      "(//task not (@a or \"\\u0041\\n\")[1:2]) union .heading -f(1 + $v, .., \"z\") / (2 * true) = x except "
      "/* "
      "@b =[i] null");
  ASSERT_FALSE(result.error);
  std::set<std::string_view> matched;
  for (const auto& event : result.traceContext->events) {
    if (std::holds_alternative<TraceContext::Match>(event.type)) matched.insert(event.label);
  }
  EXPECT_EQ(matched, std::set<std::string_view>(std::begin(kLabels), std::end(kLabels)));
}

TEST(Trace, NestsAsTheRulesDo) {
  const TracedParseResult result = parseTraced("//task @a = (1 + )");
  std::vector<const TraceContext::Event*> open;
  for (const auto& event : result.traceContext->events) {
    if (std::holds_alternative<TraceContext::Enter>(event.type)) {
      EXPECT_EQ(event.depth, open.size());
      open.push_back(&event);
      continue;
    }
    ASSERT_FALSE(open.empty());
    EXPECT_EQ(event.label, open.back()->label);
    EXPECT_EQ(event.index, open.back()->index);
    open.pop_back();
    EXPECT_EQ(event.depth, open.size());
  }
  EXPECT_TRUE(open.empty());
  EXPECT_EQ(result.traceContext->depth, 0U);
}

TEST(Trace, SaysWhyTheParseFailed) {
  const TracedParseResult result = parseTraced("//task @");
  ASSERT_TRUE(result.error);
  EXPECT_EQ(result.error->traceContext, result.traceContext);
  const auto& last = result.traceContext->events.back();
  const auto* error = std::get_if<TraceContext::Error>(&last.type);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->error.index, result.error->original.index);
  EXPECT_EQ(error->error.expected, ExpectedSet{Expected::attributeName});
}

}  // namespace
}  // namespace vell::outline_path

#include "evaluation/step_plan.h"

namespace vell::evaluation {
namespace {

using namespace outline_path;

TypeTest typeTestOf(const Step& step) { return step.filter().typeTest.value_or(TypeTest::any); }

/// Whether a predicate costs more than looking for a text, going by what it asks first.
bool isExpensive(const PredicateExpression& predicate) {
  if (const auto* node = std::get_if<And>(&predicate.node)) return isExpensive(*node->left);
  if (const auto* node = std::get_if<Or>(&predicate.node)) return isExpensive(*node->left);
  if (const auto* node = std::get_if<Not>(&predicate.node)) return isExpensive(*node->operand);
  if (const auto* node = std::get_if<PredicateGroup>(&predicate.node)) return isExpensive(*node->inner);
  const auto* comparison = std::get_if<Comparison>(&predicate.node);
  if (comparison == nullptr) return false;
  if (comparison->relation.op == RelationOp::matches) return true;
  const auto* call = std::get_if<outline_path::FunctionCall>(&comparison->left.node);
  return call != nullptr && !call->arguments().empty() &&
         std::holds_alternative<PathArgument>(call->arguments().front().node);
}

}  // namespace

StepPlan::StepPlan(const Step& step, const Compiler& compiler) : step_(step), filter_(typeTestOf(step)) {
  const PredicateExpression* predicate = step.predicate();
  if (predicate == nullptr) return;
  predicate_ = compiler.compile(*predicate);
  // Without its slice the step needs positions only where the predicate asks for them.
  asksForPositions_ = step.meta().requiresContextPositions &&
                      (!step.slice() || Step(step.axis(), step.filter()).meta().requiresContextPositions);
  // Every row that the step selects has its terms in its text, so one that lacks a term need not be asked
  // more; that pays only where the predicate does not begin with something as cheap. The terms of all steps
  // together would tell whether the path can select anything at all, but to go through all texts for that
  // costs as much as a step does.
  if (!isExpensive(*predicate)) return;
  for (const MatchTerm& term : step.meta().matchingTerms) terms_.emplace_back(term.text);
}

void StepPlan::keepMatching(Rows& rows) const {
  if (!predicate_) return;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Context context = Context::of(*rows[i]);
    if (asksForPositions_) {
      context.position = i + 1;
      context.last = rows.size();
    }
    if (satisfiesPredicate(context)) rows[kept++] = rows[i];
  }
  rows.resize(kept);
}

std::size_t StepPlan::countRuns(const Row& row) const {
  if (typeTestOf(step_) != TypeTest::any && typeTestOf(step_) != TypeTest::run) return 0;
  std::size_t total = 0;
  row.text().forEachRun([&](std::string_view, const Attributes&) { ++total; });
  std::size_t passed = 0, position = 0;
  row.text().forEachRun([&](std::string_view text, const Attributes& attributes) {
    passed += satisfiesPredicate({&row, text, &attributes, true, ++position, total}) ? 1 : 0;
  });
  if (!slice()) return passed;
  const Range range = sliceRange(*slice(), passed);
  return range.end - range.begin;
}

}  // namespace vell::evaluation

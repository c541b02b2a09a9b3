#include "evaluation/step_plan.h"

namespace vell::evaluation {
namespace {

using namespace outline_path;

TypeTest typeTestOf(const Step& step) { return step.filter().typeTest.value_or(TypeTest::any); }

}  // namespace

StepPlan::StepPlan(const Step& step, const Compiler& compiler) : step_(step), filter_(typeTestOf(step)) {
  const PredicateExpression* predicate = step.predicate();
  if (predicate == nullptr) return;
  predicate_ = compiler.compile(*predicate);
  // Without its slice the step needs positions only where the predicate asks for them.
  asksForPositions_ = step.meta().requiresContextPositions &&
                      (!step.slice() || Step(step.axis(), step.filter()).meta().requiresContextPositions);
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

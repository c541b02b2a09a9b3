#include "evaluation/step_plan.h"

#include <algorithm>
#include <cmath>

namespace vell::evaluation {
namespace {

using namespace outline_path;

using Conjuncts = std::vector<const PredicateExpression*>;

TypeTest typeTestOf(const Step& step) { return step.filter().typeTest.value_or(TypeTest::any); }

/// The predicates that all have to hold where this one does.
void collectConjuncts(const PredicateExpression& predicate, Conjuncts& conjuncts) {
  if (const auto* group = std::get_if<PredicateGroup>(&predicate.node))
    return collectConjuncts(*group->inner, conjuncts);
  const auto* both = std::get_if<And>(&predicate.node);
  if (both == nullptr) return conjuncts.push_back(&predicate);
  collectConjuncts(*both->left, conjuncts);
  collectConjuncts(*both->right, conjuncts);
}

bool isCallOf(FunctionKind kind, const ValueExpression& value) {
  const auto* call = std::get_if<FunctionCall>(&value.node);
  return call != nullptr && call->meta().kind == kind && call->arguments().empty();
}

/// The slice whose rows are those where a relation of position() to a bound holds. The last row's index is
/// that of the bound.
std::optional<Slice> sliceUpTo(RelationOp op, std::int64_t last) {
  const std::optional<std::int64_t> behind = last == -1 ? std::nullopt : std::optional(last + 1);
  switch (op) {
    case RelationOp::equal:
      return SliceIndex{last};
    case RelationOp::lessThan:
      return SliceRange{std::nullopt, last};
    case RelationOp::lessThanOrEqual:
      return SliceRange{std::nullopt, behind};
    case RelationOp::greaterThan:
      return behind ? std::optional<Slice>(SliceRange{behind, std::nullopt}) : std::nullopt;
    case RelationOp::greaterThanOrEqual:
      return SliceRange{last, std::nullopt};
    default:
      return std::nullopt;
  }
}

/// The slice that a predicate such as `position() = 1` or `position() < last()` stands for.
std::optional<Slice> sliceFor(const PredicateExpression& predicate) {
  constexpr double greatest = 1e9;
  const auto* comparison = std::get_if<Comparison>(&predicate.node);
  if (comparison == nullptr || comparison->relation.modifier ||
      !isCallOf(FunctionKind::position, comparison->left))
    return std::nullopt;
  if (isCallOf(FunctionKind::last, comparison->right)) return sliceUpTo(comparison->relation.op, -1);
  const auto* bound = std::get_if<double>(&comparison->right.node);
  if (bound == nullptr || *bound < 1 || *bound > greatest || *bound != std::floor(*bound))
    return std::nullopt;
  return sliceUpTo(comparison->relation.op, static_cast<std::int64_t>(*bound) - 1);
}

}  // namespace

StepPlan::StepPlan(const Step& step, const Compiler& compiler)
    : step_(step), work_(compiler.work()), filter_(typeTestOf(step)), slice_(step.slice()) {
  if (step.predicate() != nullptr) compile(*step.predicate(), compiler);
}

/// Where positions are asked for by one comparison alone the step takes a slice instead: that of many
/// contexts is found in one pass.
void StepPlan::compile(const PredicateExpression& predicate, const Compiler& compiler) {
  Conjuncts conjuncts, positional;
  collectConjuncts(predicate, conjuncts);
  for (const PredicateExpression* each : conjuncts)
    if (asksForPosition(*each)) positional.push_back(each);
  const bool mayBeSlice = positional.size() == 1 && !slice_ && !isRun();
  const auto slice = mayBeSlice ? sliceFor(*positional.front()) : std::nullopt;
  if (slice) {
    slice_ = slice;
    slicesFirst_ = true;
    std::erase(conjuncts, positional.front());
  }
  asksForPositions_ = !positional.empty() && !slice;
  for (const PredicateExpression* each : conjuncts) predicates_.push_back(compiler.compile(*each));
}

bool StepPlan::satisfiesPredicate(const Context& context) const {
  work_.spend(1 + predicates_.size());
  return std::all_of(predicates_.begin(), predicates_.end(),
                     [&](const Predicate& predicate) { return predicate(context); });
}

void StepPlan::keepMatching(Rows& rows) const {
  if (predicates_.empty()) return;
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
  if (!slice_) return passed;
  const Range range = sliceRange(*slice_, passed);
  return range.end - range.begin;
}

}  // namespace vell::evaluation

// Paths: which rows each step selects from those that the step before has selected.
#include <algorithm>
#include <memory>
#include <optional>

#include "evaluation/compiler.h"
#include "evaluation/step_plan.h"

namespace vell::evaluation {
namespace {

using namespace outline_path;

constexpr std::size_t kAll = static_cast<std::size_t>(-1);

/// A compiled path.
class PathPlan {
 public:
  PathPlan(const Path& path, const Compiler& compiler, const Outline& outline)
      : path_(path), outline_(outline), root_(outline.root()) {
    for (const Step& step : path.steps()) steps_.emplace_back(step, compiler);
    const auto isRun = [](const StepPlan& step) { return step.isRun(); };
    hasRuns_ = std::any_of(steps_.begin(), steps_.end(), isRun);
  }

  Rows rows(const Context& context) const { return rowsUpTo(context, steps_.size()); }

  /// How many rows or runs it selects; at least `most` where there are more.
  double count(const Context& context, std::size_t most) const {
    if (!hasRuns_) return static_cast<double>(countRows(context, most));
    if (!steps_.back().isRun()) return static_cast<double>(rows(context).size());
    double total = 0;
    if (isBehindRun(steps_.size() - 1, context)) return total;
    for (const Row* row : rowsUpTo(context, steps_.size() - 1))
      total += static_cast<double>(steps_.back().countRuns(*row));
    return total;
  }

 private:
  const Row& start(const Context& context) const { return path_.absolute() ? root_ : *context.row; }

  /// A step behind runs starts from the rows that hold them; runs have no runs themselves.
  Rows rowsUpTo(const Context& context, std::size_t steps) const {
    Rows rows{&start(context)};
    for (std::size_t i = 0; i < steps && !rows.empty(); ++i) {
      if (steps_[i].isRun() && isBehindRun(i, context)) return {};
      rows = apply(steps_[i], rows);
    }
    return rows;
  }

  /// Whether the step begins at runs.
  bool isBehindRun(std::size_t step, const Context& context) const {
    if (step == 0) return context.isRun && !path_.absolute();
    return steps_[step - 1].isRun();
  }

  std::size_t countRows(const Context& context, std::size_t most) const {
    if (steps_.size() != 1 || path_.meta().requiresContextPositions) return rows(context).size();
    const StepPlan& step = steps_[0];
    const auto range = rangeOf(step.axis(), start(context), outline_);
    if (range && !step.hasPredicate()) return countIn(*range, outline_, step.filter());
    std::size_t count = 0;
    walk(step.axis(), start(context), root_, [&](const Row& row) {
      count += step.matches(row) ? 1 : 0;
      return count < most;
    });
    return count;
  }

  Rows apply(const StepPlan& step, const Rows& contexts) const {
    if (step.isRun()) {
      Rows rows = rowsAlong(Axis::self, contexts, outline_, TypeFilter(TypeTest::any));
      std::erase_if(rows, [&](const Row* row) { return step.countRuns(*row) == 0; });
      return rows;
    }
    const bool together =
        contexts.size() > 1 && !step.asksForPositions() && (!step.slice() || sharesCandidates(step.axis()));
    if (!together) return fromEach(step, contexts);
    Rows rows = rowsAlong(step.axis(), contexts, outline_, step.filter());
    step.keepMatching(rows);
    if (!step.slice()) return rows;
    return slicesFromEach(step.axis(), contexts, std::move(rows), *step.slice(), outline_);
  }

  Rows fromEach(const StepPlan& step, const Rows& contexts) const {
    Rows all;
    for (const Row* context : contexts) {
      const Rows taken = fromOne(step, *context);
      all.insert(all.end(), taken.begin(), taken.end());
      // Contexts that take the same rows again and again must not fill the memory.
      if (all.size() > 2 * outline_.rowsInOrder().size()) sortInDocumentOrder(all);
    }
    sortInDocumentOrder(all);
    return all;
  }

  /// What a step takes from one context, the nearest first.
  Rows fromOne(const StepPlan& step, const Row& context) const {
    const auto& slice = step.slice();
    Rows rows = candidates(step, context, slice ? candidatesNeeded(*slice) : kAll);
    if (!slice) return rows;
    const Range range = sliceRange(*slice, rows.size());
    return {rows.begin() + static_cast<std::ptrdiff_t>(range.begin),
            rows.begin() + static_cast<std::ptrdiff_t>(range.end)};
  }

  /// The rows from one context that pass the step's filter, as many as are needed.
  Rows candidates(const StepPlan& step, const Row& context, std::size_t most) const {
    Rows rows;
    if (most == 0) return rows;
    const bool takesAll = most == kAll || step.asksForPositions();
    if (takesAll && rangeOf(step.axis(), context, outline_)) {
      rows = rowsAlong(step.axis(), {&context}, outline_, step.filter());
      step.keepMatching(rows);
      return rows;
    }
    walk(step.axis(), context, root_, [&](const Row& row) {
      const bool passes = step.asksForPositions() ? step.filter().passes(row) : step.matches(row);
      if (passes) rows.push_back(&row);
      return takesAll || rows.size() < most;
    });
    if (step.asksForPositions()) step.keepMatching(rows);
    return rows;
  }

  const Path& path_;
  const Outline& outline_;
  const Row& root_;
  std::vector<StepPlan> steps_;
  bool hasRuns_ = false;
};

bool isBefore(const Row* left, const Row* right) { return left->order() < right->order(); }

using RowsOf = std::function<Rows(const Context&)>;
using SetAlgorithm = void (*)(const Rows&, const Rows&, Rows&);

void unite(const Rows& left, const Rows& right, Rows& out) {
  std::set_union(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(out), isBefore);
}
void subtract(const Rows& left, const Rows& right, Rows& out) {
  std::set_difference(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(out),
                      isBefore);
}
void intersect(const Rows& left, const Rows& right, Rows& out) {
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(out),
                        isBefore);
}

RowsOf combine(RowsOf left, RowsOf right, SetAlgorithm algorithm) {
  return [left = std::move(left), right = std::move(right), algorithm](const Context& context) {
    Rows out;
    algorithm(left(context), right(context), out);
    return out;
  };
}

/// Whether the path selects the same rows from every context.
bool isAbsolute(const PathExpression& expression) {
  if (const auto* path = std::get_if<Path>(&expression.node)) return path->absolute();
  if (const auto* node = std::get_if<PathGroup>(&expression.node)) return isAbsolute(*node->inner);
  const auto both = [](const auto& node) { return isAbsolute(*node.left) && isAbsolute(*node.right); };
  if (const auto* node = std::get_if<Union>(&expression.node)) return both(*node);
  if (const auto* node = std::get_if<Except>(&expression.node)) return both(*node);
  return both(std::get<Intersect>(expression.node));
}

std::shared_ptr<const PathPlan> plan(const Path& path, const Compiler& compiler, const Outline& outline) {
  return std::make_shared<PathPlan>(path, compiler, outline);
}

}  // namespace

RowsOf Compiler::compile(const PathExpression& expression) const {
  const auto sides = [this](const auto& node, SetAlgorithm algorithm) {
    return combine(compile(*node.left), compile(*node.right), algorithm);
  };
  if (const auto* node = std::get_if<PathGroup>(&expression.node)) return compile(*node->inner);
  if (const auto* node = std::get_if<Union>(&expression.node)) return sides(*node, unite);
  if (const auto* node = std::get_if<Except>(&expression.node)) return sides(*node, subtract);
  if (const auto* node = std::get_if<Intersect>(&expression.node)) return sides(*node, intersect);
  return [planned = plan(std::get<Path>(expression.node), *this, outline_)](const Context& context) {
    return planned->rows(context);
  };
}

Getter Compiler::compileCount(const PathExpression& expression, std::size_t most) const {
  Getter count;
  if (const auto* path = std::get_if<Path>(&expression.node)) {
    count = [most, planned = plan(*path, *this, outline_)](const Context& context) {
      return Value(planned->count(context, most));
    };
  } else {
    count = [rows = compile(expression)](const Context& context) {
      return Value(static_cast<double>(rows(context).size()));
    };
  }
  if (!isAbsolute(expression)) return count;
  // The same for every row: counted once.
  return [count, known = std::make_shared<Value>()](const Context& context) {
    if (isNull(*known)) *known = count(context);
    return *known;
  };
}

}  // namespace vell::evaluation

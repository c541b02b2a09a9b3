// Paths: which rows each step selects from those that the step before has selected.
#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>

#include "evaluation/compiler.h"
#include "evaluation/step_plan.h"

namespace vell::evaluation {
namespace {

using namespace outline_path;

/// A compiled path.
class PathPlan {
 public:
  PathPlan(const Path& path, const Compiler& compiler, const Outline& outline)
      : path_(path), outline_(outline), work_(compiler.work()) {
    for (const Step& step : path.steps()) steps_.emplace_back(step, compiler);
    const auto leadsOn = [](const StepPlan& step) { return !selectsOneRow(step.axis()); };
    leading_ = static_cast<std::size_t>(std::find_if(steps_.begin(), steps_.end(), leadsOn) - steps_.begin());
  }

  Rows rows(const Context& context) const {
    return follow({&start(context)}, 0, steps_.size(), context.isRun);
  }

  /// How many rows it selects; of runs, where its last step yields runs.
  double count(const Context& context) {
    // From here the same is counted for all rows that lead here.
    const Rows origin = follow({&start(context)}, 0, leading_, context.isRun);
    if (origin.empty() || leading_ == steps_.size()) return static_cast<double>(origin.size());
    const bool isAtRun = context.isRun && leading_ == 0;
    if (leading_ + 1 == steps_.size()) return countOnStep(steps_.back(), *origin.front(), isAtRun);
    if (isAtRun) return countFrom(origin, isAtRun);
    const auto [known, isNew] = known_.try_emplace(origin.front()->order(), 0);
    if (isNew) known->second = countFrom(origin, isAtRun);
    return known->second;
  }

 private:
  const Row& start(const Context& context) const { return path_.absolute() ? outline_.root() : *context.row; }

  /// Where the steps from `begin` to `end` lead. A step behind runs starts from the rows that hold them; runs
  /// have no runs themselves.
  Rows follow(Rows rows, std::size_t begin, std::size_t end, bool isAtRun) const {
    isAtRun = isAtRun && !path_.absolute();
    for (std::size_t i = begin; i < end && !rows.empty(); ++i) {
      if (steps_[i].isRun() && isAtRun) return {};
      rows = apply(steps_[i], rows);
      isAtRun = steps_[i].isRun();
    }
    return rows;
  }

  double countFrom(const Rows& origin, bool isAtRun) const {
    const StepPlan& last = steps_.back();
    if (!last.isRun()) return static_cast<double>(follow(origin, leading_, steps_.size(), isAtRun).size());
    if (steps_[steps_.size() - 2].isRun()) return 0;
    double runs = 0;
    for (const Row* row : follow(origin, leading_, steps_.size() - 1, isAtRun))
      runs += static_cast<double>(last.countRuns(*row));
    return runs;
  }

  /// Counts along the axis; once that has been as much as a pass over the outline, it makes that pass.
  double countOnStep(const StepPlan& step, const Row& from, bool isAtRun) {
    const Work::At at(work_, step.step());
    if (step.isRun()) return isAtRun && !path_.absolute() ? 0 : static_cast<double>(step.countRuns(from));
    if (step.asksForPositions() || step.slicesFirst())
      return static_cast<double>(apply(step, {&from}).size());
    const auto matches = [&](const Row& row) { return step.matches(row); };
    if (!counts_ && counted_ > outline_.rowsInOrder().size()) counts_.emplace(outline_, matches);
    std::size_t count = 0;
    if (counts_) {
      count = counts_->along(step.axis(), from);
    } else {
      walk(step.axis(), from, outline_.root(), work_, [&](const Row& row) {
        ++counted_;
        count += matches(row) ? 1 : 0;
        return true;
      });
    }
    if (!step.slice()) return static_cast<double>(count);
    const Range range = sliceRange(*step.slice(), count);
    return static_cast<double>(range.end - range.begin);
  }

  Rows apply(const StepPlan& step, const Rows& contexts) const {
    const Work::At at(work_, step.step());
    if (step.isRun()) {
      Rows rows = rowsAlong(Axis::self, contexts, outline_, TypeFilter(TypeTest::any), work_);
      std::erase_if(rows, [&](const Row* row) { return step.countRuns(*row) == 0; });
      return rows;
    }
    const bool together =
        contexts.size() > 1 && !step.asksForPositions() && (!step.slice() || sharesCandidates(step.axis()));
    if (!together) return fromEach(step, contexts);
    Rows rows = rowsAlong(step.axis(), contexts, outline_, step.filter(), work_);
    if (!step.slicesFirst()) step.keepMatching(rows);
    if (step.slice())
      rows = slicesFromEach(step.axis(), contexts, std::move(rows), *step.slice(), outline_, work_);
    if (step.slicesFirst()) step.keepMatching(rows);
    return rows;
  }

  Rows fromEach(const StepPlan& step, const Rows& contexts) const {
    Rows all;
    for (const Row* context : contexts) {
      const Rows taken = fromOne(step, *context);
      work_.spend(1 + taken.size());
      all.insert(all.end(), taken.begin(), taken.end());
      // Contexts that take the same rows again and again must not fill the memory.
      if (all.size() <= 2 * outline_.rowsInOrder().size()) continue;
      work_.spend(all.size());
      sortInDocumentOrder(all, outline_);
    }
    sortInDocumentOrder(all, outline_);
    return all;
  }

  /// What a step takes from one context, the nearest first.
  Rows fromOne(const StepPlan& step, const Row& context) const {
    const auto& slice = step.slice();
    Rows rows = candidates(step, context, slice ? candidatesNeeded(*slice) : allCandidates);
    if (!slice) return rows;
    const Range range = sliceRange(*slice, rows.size());
    rows = {rows.begin() + static_cast<std::ptrdiff_t>(range.begin),
            rows.begin() + static_cast<std::ptrdiff_t>(range.end)};
    if (step.slicesFirst()) step.keepMatching(rows);
    return rows;
  }

  /// The rows from one context that pass the step's filter, as many as are needed.
  Rows candidates(const StepPlan& step, const Row& context, std::size_t most) const {
    Rows rows;
    if (most == 0) return rows;
    const bool takesAll = most == allCandidates || step.asksForPositions();
    const bool asksLater = step.asksForPositions() || step.slicesFirst();
    if (takesAll && rangeOf(step.axis(), context, outline_)) {
      rows = rowsAlong(step.axis(), {&context}, outline_, step.filter(), work_);
      if (!step.slicesFirst()) step.keepMatching(rows);
      return rows;
    }
    walk(step.axis(), context, outline_.root(), work_, [&](const Row& row) {
      if (asksLater ? step.filter().passes(row) : step.matches(row)) rows.push_back(&row);
      return takesAll || rows.size() < most;
    });
    if (step.asksForPositions()) step.keepMatching(rows);
    return rows;
  }

  const Path& path_;
  const Outline& outline_;
  Work& work_;
  std::vector<StepPlan> steps_;
  std::size_t leading_ = 0;                          ///< steps at the beginning that select one row at most
  std::unordered_map<std::uint32_t, double> known_;  ///< counts, by the row that the leading steps lead to
  std::optional<AxisCounts> counts_;                 ///< along the last step
  std::size_t counted_ = 0;
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

RowsOf combine(RowsOf left, RowsOf right, SetAlgorithm algorithm, Work& work) {
  return [left = std::move(left), right = std::move(right), algorithm, &work](const Context& context) {
    const Rows first = left(context), second = right(context);
    work.spend((first.size() + second.size()) / 16 + 1);
    Rows out;
    algorithm(first, second, out);
    return out;
  };
}

/// What is the same for every row is found once.
template <typename Result>
std::function<Result(const Context&)> once(std::function<Result(const Context&)> find) {
  return [find = std::move(find), known = std::make_shared<std::optional<Result>>()](const Context& context) {
    if (!*known) *known = find(context);
    return **known;
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

std::shared_ptr<PathPlan> plan(const Path& path, const Compiler& compiler, const Outline& outline) {
  return std::make_shared<PathPlan>(path, compiler, outline);
}

}  // namespace

RowsOf Compiler::compile(const PathExpression& expression) const {
  const auto sides = [this](const auto& node, SetAlgorithm algorithm) {
    return combine(compile(*node.left), compile(*node.right), algorithm, work_);
  };
  if (const auto* node = std::get_if<PathGroup>(&expression.node)) return compile(*node->inner);
  if (const auto* node = std::get_if<Union>(&expression.node)) return sides(*node, unite);
  if (const auto* node = std::get_if<Except>(&expression.node)) return sides(*node, subtract);
  if (const auto* node = std::get_if<Intersect>(&expression.node)) return sides(*node, intersect);
  const RowsOf rows = [planned = plan(std::get<Path>(expression.node), *this, outline_)](
                          const Context& context) { return planned->rows(context); };
  return isAbsolute(expression) ? once(rows) : rows;
}

Getter Compiler::compileCount(const PathExpression& expression) const {
  Getter count;
  if (const auto* path = std::get_if<Path>(&expression.node)) {
    count = [planned = plan(*path, *this, outline_)](const Context& context) {
      return Value(planned->count(context));
    };
  } else {
    count = [rows = compile(expression)](const Context& context) {
      return Value(static_cast<double>(rows(context).size()));
    };
  }
  return isAbsolute(expression) ? once(count) : count;
}

}  // namespace vell::evaluation

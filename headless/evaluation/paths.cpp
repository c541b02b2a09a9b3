// Plans for paths: which rows a step takes from the rows of the step before.
#include <algorithm>
#include <memory>
#include <optional>

#include "headless/evaluation/compiler.h"

namespace vell::headless {
namespace {

using namespace outline_path;

constexpr std::size_t kAll = static_cast<std::size_t>(-1);

bool passes(TypeTest test, RowType type) {
  switch (test) {
    case TypeTest::any:
    case TypeTest::row:
      return true;
    case TypeTest::heading:
      return type == RowType::heading;
    case TypeTest::quote:
      return type == RowType::quote;
    case TypeTest::code:
      return type == RowType::code;
    case TypeTest::note:
      return type == RowType::note;
    case TypeTest::unordered:
      return type == RowType::unordered;
    case TypeTest::ordered:
      return type == RowType::ordered;
    case TypeTest::task:
      return type == RowType::task;
    case TypeTest::hr:
      return type == RowType::hr;
    case TypeTest::body:
      return type == RowType::body;
    case TypeTest::run:
      return false;
  }
  return false;
}

/// The part of `count` candidates that a slice takes.
struct Span {
  std::size_t begin, end;
};

std::size_t fromEnd(std::int64_t bound, std::size_t count) {
  if (bound >= 0) return std::min(static_cast<std::size_t>(bound), count);
  const auto back = static_cast<std::size_t>(-(bound + 1)) + 1;
  return back > count ? 0 : count - back;
}

Span spanOf(const Slice& slice, std::size_t count) {
  if (const auto* range = std::get_if<SliceRange>(&slice)) {
    const Span span{range->start ? fromEnd(*range->start, count) : 0,
                    range->end ? fromEnd(*range->end, count) : count};
    return {span.begin, std::max(span.begin, span.end)};
  }
  const std::int64_t index = std::get<SliceIndex>(slice).index;
  const bool isOutside =
      index < 0 ? static_cast<std::size_t>(-(index + 1)) >= count : static_cast<std::size_t>(index) >= count;
  const std::size_t begin = fromEnd(index, count);
  return isOutside ? Span{count, count} : Span{begin, begin + 1};
}

/// How many candidates have to be known before the slice is: all, where it counts from the end.
std::size_t neededFor(const std::optional<Slice>& slice) {
  if (!slice) return kAll;
  if (const auto* index = std::get_if<SliceIndex>(&*slice)) {
    return index->index < 0 ? kAll : static_cast<std::size_t>(index->index) + 1;
  }
  const auto& range = std::get<SliceRange>(*slice);
  const bool fromBegin = range.start.value_or(0) >= 0 && range.end && *range.end >= 0;
  return fromBegin ? static_cast<std::size_t>(*range.end) : kAll;
}

/// Whether the predicate may call last(), which makes all candidates necessary.
struct StepPlan {
  const Step* step;
  TypeTest typeTest;
  /// Empty where there is none.
  Test predicate;

  bool isRun() const { return step->axis() == Axis::run; }
  bool accepts(const Row& row) const {
    return passes(typeTest, row.type()) && (!predicate || predicate(Context::of(row)));
  }
};

/// The runs of the row that the step takes.
std::size_t countRuns(const StepPlan& plan, const Row& row) {
  if (plan.typeTest != TypeTest::any && plan.typeTest != TypeTest::run) return 0;
  std::size_t total = 0;
  row.text().forEachRun([&](std::string_view, const Attributes&) { ++total; });
  std::size_t passed = 0, position = 0;
  row.text().forEachRun([&](std::string_view text, const Attributes& attributes) {
    const Context context{&row, text, &attributes, true, ++position, total};
    passed += !plan.predicate || plan.predicate(context) ? 1 : 0;
  });
  if (!plan.step->slice()) return passed;
  const Span span = spanOf(*plan.step->slice(), passed);
  return span.end - span.begin;
}

/// The candidates from one context, in the order of the axis.
Rows candidates(const StepPlan& plan, const Row& context, const Row& root, std::size_t most) {
  Rows found;
  walk(plan.step->axis(), context, root, [&](const Row& row) {
    if (passes(plan.typeTest, row.type())) found.push_back(&row);
    return found.size() < most;
  });
  return found;
}

/// Keeps those that pass the predicate, told their positions.
void filterByPosition(const StepPlan& plan, Rows& rows) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Context context = Context::of(*rows[i]);
    context.position = i + 1;
    context.last = rows.size();
    if (plan.predicate(context)) rows[kept++] = rows[i];
  }
  rows.resize(kept);
}

/// The candidates that pass a predicate which does not ask for positions, as many as are needed.
Rows firstAccepted(const StepPlan& plan, const Row& context, const Row& root, std::size_t most) {
  Rows found;
  if (most == 0) return found;
  walk(plan.step->axis(), context, root, [&](const Row& row) {
    if (plan.accepts(row)) found.push_back(&row);
    return found.size() < most;
  });
  return found;
}

class PathPlan {
 public:
  PathPlan(const Path& path, std::vector<StepPlan> steps, std::vector<bool> asksForPositions, const Row& root)
      : path_(path), steps_(std::move(steps)), asksForPositions_(std::move(asksForPositions)), root_(root) {}

  Rows rows(const Row& context) const { return rowsUpTo(context, steps_.size()); }

  double count(const Row& context) const {
    if (steps_.empty() || !steps_.back().isRun()) return static_cast<double>(countRows(context));
    double total = 0;
    for (const Row* row : rowsUpTo(context, steps_.size() - 1))
      total += static_cast<double>(countRuns(steps_.back(), *row));
    return total;
  }

 private:
  Rows rowsUpTo(const Row& context, std::size_t steps) const {
    Rows rows{path_.absolute() ? &root_ : &context};
    for (std::size_t i = 0; i < steps && !rows.empty(); ++i) rows = apply(i, rows);
    return rows;
  }

  std::size_t countRows(const Row& context) const {
    if (steps_.size() != 1 || path_.meta().requiresContextPositions) return rows(context).size();
    std::size_t count = 0;
    walk(steps_[0].step->axis(), path_.absolute() ? root_ : context, root_, [&](const Row& row) {
      count += steps_[0].accepts(row) ? 1 : 0;
      return true;
    });
    return count;
  }

  Rows apply(std::size_t index, const Rows& contexts) const {
    const StepPlan& plan = steps_[index];
    if (plan.isRun()) {
      return rowsAlong(Axis::self, contexts, root_, [&](const Row& row) { return countRuns(plan, row) > 0; });
    }
    if (!plan.step->meta().requiresContextPositions) {
      return rowsAlong(plan.step->axis(), contexts, root_, [&](const Row& row) { return plan.accepts(row); });
    }
    Rows all;
    for (const Row* context : contexts) {
      const Rows taken = fromOne(index, *context);
      all.insert(all.end(), taken.begin(), taken.end());
    }
    putInOrder(all);
    return all;
  }

  /// What a step that needs positions takes from one context.
  Rows fromOne(std::size_t index, const Row& context) const {
    const StepPlan& plan = steps_[index];
    const auto& slice = plan.step->slice();
    Rows rows;
    if (asksForPositions_[index]) {
      rows = candidates(plan, context, root_, kAll);
      filterByPosition(plan, rows);
    } else {
      rows = firstAccepted(plan, context, root_, neededFor(slice));
    }
    if (!slice) return rows;
    const Span span = spanOf(*slice, rows.size());
    return {rows.begin() + static_cast<std::ptrdiff_t>(span.begin),
            rows.begin() + static_cast<std::ptrdiff_t>(span.end)};
  }

  const Path& path_;
  std::vector<StepPlan> steps_;
  std::vector<bool> asksForPositions_;
  const Row& root_;
};

bool isBefore(const Row* left, const Row* right) { return left->order() < right->order(); }

using RowsOf = std::function<Rows(const Row&)>;
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
  return [left = std::move(left), right = std::move(right), algorithm](const Row& context) {
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

std::shared_ptr<const PathPlan> plan(const Path& path, const Compiler& compiler, const Row& root) {
  std::vector<StepPlan> steps;
  std::vector<bool> asksForPositions;
  for (const Step& step : path.steps()) {
    const PredicateExpression* predicate = step.predicate();
    steps.push_back({&step, step.filter().typeTest.value_or(TypeTest::any),
                     predicate != nullptr ? compiler.compile(*predicate) : Test()});
    // Without its slice the step needs positions only where the predicate asks for them.
    asksForPositions.push_back(step.meta().requiresContextPositions &&
                               Step(step.axis(), step.filter()).meta().requiresContextPositions);
  }
  return std::make_shared<PathPlan>(path, std::move(steps), std::move(asksForPositions), root);
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
  return [planned = plan(std::get<Path>(expression.node), *this, outline_.root())](const Row& context) {
    return planned->rows(context);
  };
}

std::function<double(const Row&)> Compiler::compileCount(const PathExpression& expression) const {
  std::function<double(const Row&)> count;
  if (const auto* path = std::get_if<Path>(&expression.node)) {
    count = [planned = plan(*path, *this, outline_.root())](const Row& context) {
      return planned->count(context);
    };
  } else {
    count = [rows = compile(expression)](const Row& context) {
      return static_cast<double>(rows(context).size());
    };
  }
  if (!isAbsolute(expression)) return count;
  // The same for every row: counted once.
  return [count, known = std::make_shared<std::optional<double>>()](const Row& context) {
    if (!*known) *known = count(context);
    return **known;
  };
}

}  // namespace vell::headless

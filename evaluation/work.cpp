#include "evaluation/work.h"

#include "evaluation/value.h"
#include "outline_path/print.h"

namespace vell::evaluation {
namespace {

constexpr std::uint64_t stepsForRow = 50;
constexpr std::uint64_t betweenLooks = 500;
constexpr std::chrono::milliseconds betweenPauses{5};

/// The step as it stands in a path, behind a separator.
std::string spelled(const outline_path::Step& step) {
  return print(outline_path::PathExpression{outline_path::Path(true, {step})});
}

}  // namespace

Work::Work(const document::Outline& outline, const Budget& budget)
    : budget_(budget), most_(budget.steps + stepsForRow * outline.rowsInOrder().size()) {}

void Work::look() {
  nextLook_ = spent_ + betweenLooks;
  if (spent_ > most_)
    throw EvaluationError("it takes too long" + (step_ == nullptr ? "" : ", at its step " + spelled(*step_)));
  if (!budget_.pause || Clock::now() - lastPause_ < betweenPauses) return;
  budget_.pause();
  lastPause_ = Clock::now();
}

}  // namespace vell::evaluation

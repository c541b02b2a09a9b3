#include "evaluation/work.h"

#include "evaluation/value.h"
#include "outline_path/print.h"

namespace vell::evaluation {
namespace {

constexpr std::uint64_t kStepsForRow = 50;
constexpr std::uint64_t kBetweenLooks = 500;
constexpr std::chrono::milliseconds kBetweenPauses{5};

/// The step as it stands in a path, behind a separator.
std::string spelled(const outline_path::Step& step) {
  return print(outline_path::PathExpression{outline_path::Path(true, {step})});
}

}  // namespace

Work::Work(const document::Outline& outline, const Budget& budget)
    : budget_(budget), most_(budget.steps + kStepsForRow * outline.rowsInOrder().size()) {}

void Work::look() {
  nextLook_ = spent_ + kBetweenLooks;
  if (spent_ > most_)
    throw EvaluationError("it takes too long" + (step_ == nullptr ? "" : ", at its step " + spelled(*step_)));
  if (!budget_.pause || Clock::now() - lastPause_ < kBetweenPauses) return;
  budget_.pause();
  lastPause_ = Clock::now();
}

}  // namespace vell::evaluation

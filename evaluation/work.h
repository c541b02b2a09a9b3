#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "document/outline.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

/// How long an evaluation may take.
struct Budget {
  /// A row looked at, a value compared, a stretch of text searched: one or two seconds' worth. For each row
  /// of the outline some more are given.
  std::uint64_t steps = 50'000'000;
  /// Called about every 5 ms of work; what it throws ends the evaluation. The outline must be the same when
  /// it returns. May be empty.
  std::function<void()> pause{};
};

/// Counts the steps of one evaluation. Throws an EvaluationError that names the step of the path where they
/// ran out.
class Work {
 public:
  /// The budget and the outline, which must be numbered, must outlive the object.
  Work(const document::Outline& outline, const Budget& budget);

  void spend(std::uint64_t steps) {
    spent_ += steps;
    if (spent_ >= nextLook_) look();
  }

  /// Says during its life which step of the path is being evaluated.
  class At {
   public:
    At(Work& work, const outline_path::Step& step) : work_(work), before_(work.step_) { work.step_ = &step; }
    ~At() { work_.step_ = before_; }
    At(const At&) = delete;
    At& operator=(const At&) = delete;

   private:
    Work& work_;
    const outline_path::Step* before_;
  };

 private:
  using Clock = std::chrono::steady_clock;

  void look();

  const Budget& budget_;
  std::uint64_t most_;
  std::uint64_t spent_ = 0;
  std::uint64_t nextLook_ = 0;
  const outline_path::Step* step_ = nullptr;
  Clock::time_point lastPause_ = Clock::now();
};

}  // namespace vell::evaluation

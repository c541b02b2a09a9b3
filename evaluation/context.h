#pragma once

#include <cstddef>
#include <string_view>

#include "evaluation/document.h"

namespace vell::evaluation {

/// What a predicate is asked about: a row, or one of its runs, and where it stands among the candidates of
/// its step.
struct Context {
  const Row* row = nullptr;
  std::string_view text;
  const Attributes* attributes = nullptr;
  bool isRun = false;
  /// From 1; both are 0 where the step does not need them.
  std::size_t position = 0;
  std::size_t last = 0;

  static Context of(const Row& row) { return {&row, row.text().string(), &row.attributes()}; }
};

}  // namespace vell::evaluation

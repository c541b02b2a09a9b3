#pragma once

#include "headless/editing/row_refs.h"

namespace vell::headless {

/// Answers row references with the outline path language.
class PathRows : public PathEvaluator {
 public:
  std::vector<const Row*> rows(const OpenOutline& opened, std::string_view path) const override;
};

}  // namespace vell::headless

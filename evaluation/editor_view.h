#pragma once

#include <optional>
#include <string_view>

#include "evaluation/document.h"
#include "evaluation/value.h"

namespace vell::evaluation {

/// The editor that an expression is evaluated in: what its functions say about a row.
class EditorView {
 public:
  virtual ~EditorView() = default;
  /// The value of the function of that name for the row; none where there is no such function.
  virtual std::optional<Value> call(std::string_view function, const Row& row) const = 0;
};

}  // namespace vell::evaluation

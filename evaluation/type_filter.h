#pragma once

#include "evaluation/document.h"
#include "outline_path/words.h"

namespace vell::evaluation {

/// A type test, made ready to be asked of many rows.
class TypeFilter {
 public:
  explicit TypeFilter(outline_path::TypeTest test);

  bool passesAny() const { return any_; }
  /// The one type that passes, where not any does.
  RowType type() const { return type_; }
  bool passes(RowType type) const { return any_ || type == type_; }

 private:
  bool any_ = false;
  RowType type_ = RowType::root;
};

}  // namespace vell::evaluation

#pragma once

#include <variant>

#include "outline_path/path_expression.h"

// The tree of a parsed outline path. All types are values: copied deeply, compared by content. The facts
// called `meta` are worked out when a node is built and never change, so that an evaluator can plan by them.

namespace vell::outline_path {

/// The root of the tree.
using Expression = std::variant<PathExpression, ValueExpression>;

}  // namespace vell::outline_path

#pragma once

#include "outline_path/drafts.h"
#include "outline_path/expression.h"

namespace vell::outline_path {

/// The tree that a draft of a whole path or value stands for.
PathExpression pathOf(const Draft& draft);
ValueExpression valueOf(const Draft& draft);

}  // namespace vell::outline_path

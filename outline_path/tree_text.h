#pragma once

#include <string>

#include "outline_path/expression.h"

namespace vell::outline_path {

/// The tree, one node a line: "| " for each level, "+ " and the node's label. Lines end with a newline.
std::string treeText(const Expression& expression);

}  // namespace vell::outline_path

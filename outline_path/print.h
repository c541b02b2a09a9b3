#pragma once

#include <string>

#include "outline_path/expression.h"

// The two printers of the tree.

namespace vell::outline_path {

/// The tree, one node a line: "| " for each level, "+ " and the node's label. Lines end with a newline.
std::string treeText(const Expression& expression);

/// The canonical text of an expression, with the fewest blanks and no bracket that is not a group of the
/// tree. Parsing it gives the same tree, for every tree that a parse can give.
std::string print(const Expression& expression);
std::string print(const PathExpression& path);
std::string print(const PredicateExpression& predicate);
std::string print(const ValueExpression& value);
std::string print(const Relation& relation);
std::string print(const Slice& slice);

}  // namespace vell::outline_path

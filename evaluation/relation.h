#pragma once

#include "evaluation/value.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

/// Whether `left relation right` holds. Without a modifier numbers are compared where one side is a number,
/// truth values where one is a truth value, else text with its case. A comparison with nothing holds only
/// for "=" where both are nothing, and for "!=" where one is not.
bool holds(const Value& left, const outline_path::Relation& relation, const Value& right);

}  // namespace vell::evaluation

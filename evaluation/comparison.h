#pragma once

#include "evaluation/dates.h"
#include "evaluation/value.h"
#include "evaluation/work.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

/// Whether `left relation right` holds. Without a modifier truth values are compared where one side is a
/// truth value, else dates or numbers where one side is one, else text with its case. A comparison with
/// nothing holds only for "=" where both are nothing, and for "!=" where one is not. A moment that is
/// compared with a day stands for its local day.
bool holds(const Value& left, const outline_path::Relation& relation, const Value& right, Work& work,
           const Dates& dates);

}  // namespace vell::evaluation

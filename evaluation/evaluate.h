#pragma once

#include <variant>

#include "evaluation/axes.h"
#include "evaluation/clock.h"
#include "evaluation/context.h"
#include "evaluation/value.h"
#include "evaluation/work.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

/// What an expression may ask about beside the outline, and how long it may take.
struct Environment {
  /// Asked for the present moment once.
  const Clock& clock;
  /// Null where there is no editor.
  const EditorView* editor = nullptr;
  Budget budget{};
};

/// What an expression gives for an outline, with its root as the context: the rows that it selects, in
/// document order and none twice, or a value. A value may point into the outline and the expression.
/// Throws EvaluationError for what cannot be evaluated or takes too long. Takes as much of the stack as
/// parsing did: see `outline_path::onStackFor`.
using Evaluated = std::variant<Rows, Value>;
Evaluated evaluate(const outline_path::Expression& expression, const Outline& outline,
                   const Environment& environment);

/// The same where only rows will do; throws EvaluationError for a value.
Rows evaluateRows(const outline_path::Expression& expression, const Outline& outline,
                  const Environment& environment);

}  // namespace vell::evaluation

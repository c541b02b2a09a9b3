#include "evaluation/evaluate.h"

#include "evaluation/compiler.h"

namespace vell::evaluation {

using outline_path::Expression;

Evaluated evaluate(const Expression& expression, const Outline& outline, const Environment& environment) {
  outline.number();
  Work work(outline, environment.budget);
  const Dates dates(environment.clock);
  const Compiler compiler(outline, environment.editor, dates, work);
  const Context root = Context::of(outline.root());
  if (const auto* path = std::get_if<outline_path::PathExpression>(&expression))
    return compiler.compile(*path)(root);
  return compiler.compile(std::get<outline_path::ValueExpression>(expression))(root);
}

Rows evaluateRows(const Expression& expression, const Outline& outline, const Environment& environment) {
  Evaluated result = evaluate(expression, outline, environment);
  if (auto* rows = std::get_if<Rows>(&result)) return std::move(*rows);
  throw EvaluationError(std::string("it gives ") + kindOf(std::get<Value>(result)) +
                        ", not rows (predicates compare values: //* count(child::*) > 0)");
}

}  // namespace vell::evaluation

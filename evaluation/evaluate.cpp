#include "evaluation/evaluate.h"

#include "evaluation/compiler.h"

namespace vell::evaluation {

Evaluated evaluate(const outline_path::Expression& expression, const Outline& outline,
                   const EditorView* editor) {
  outline.number();
  const Compiler compiler(outline, editor);
  if (const auto* path = std::get_if<outline_path::PathExpression>(&expression)) {
    return compiler.compile(*path)(outline.root());
  }
  return compiler.compile(std::get<outline_path::ValueExpression>(expression))(Context::of(outline.root()));
}

Rows evaluateRows(const outline_path::Expression& expression, const Outline& outline,
                  const EditorView* editor) {
  Evaluated result = evaluate(expression, outline, editor);
  if (auto* rows = std::get_if<Rows>(&result)) return std::move(*rows);
  throw EvaluationError(std::string("it gives ") + kindOf(std::get<Value>(result)) + ", not rows");
}

}  // namespace vell::evaluation

#include "headless/editing/path_rows.h"

#include "evaluation/evaluate.h"
#include "headless/editing/editor_functions.h"
#include "headless/editing/problem.h"
#include "outline_path/parse.h"

namespace vell::headless {

std::vector<const Row*> PathRows::rows(const OpenOutline& opened, std::string_view path) const {
  const auto parsed = outline_path::parse(path, {.allowValueExpression = true});
  if (parsed.error) throw Problem(outline_path::render(*parsed.error, path));
  const EditorFunctions editor(opened.outline(), opened.editor());
  try {
    return evaluation::evaluateRows(*parsed.expression, opened.outline(), &editor);
  } catch (const evaluation::EvaluationError& error) {
    throw Problem("The path " + std::string(path) + " cannot be evaluated: " + error.what());
  }
}

}  // namespace vell::headless

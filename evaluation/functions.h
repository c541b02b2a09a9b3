#pragma once

#include "evaluation/compiler.h"

namespace vell::evaluation {

/// A function of the language with its compiled arguments; none where the name is not one of them. Throws
/// EvaluationError where the arguments do not fit.
std::optional<Getter> compileFunction(const outline_path::FunctionCall& call,
                                      const std::vector<Getter>& arguments);

}  // namespace vell::evaluation

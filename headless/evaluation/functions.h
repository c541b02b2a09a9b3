#pragma once

#include "headless/evaluation/compiler.h"

namespace vell::headless {

/// A function of the language with its compiled arguments; none where the name is not one of them. Throws
/// EvaluationError where the arguments do not fit.
std::optional<Getter> compileFunction(const outline_path::FunctionCall& call,
                                      const std::vector<Getter>& arguments);

}  // namespace vell::headless

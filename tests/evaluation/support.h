#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "evaluation/evaluate.h"

namespace vell::evaluation {

/// An outline of lines "type text @name=value …", two blanks for each level.
std::unique_ptr<Outline> outlineOf(std::string_view lines);
/// The texts of the rows that the path selects, with blanks between; "error: …" where it cannot be evaluated.
std::string selected(const Outline& outline, const std::string& path, const EditorView* editor = nullptr);

}  // namespace vell::evaluation

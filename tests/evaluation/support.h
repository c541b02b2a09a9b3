#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "evaluation/evaluate.h"

namespace vell::evaluation {

/// The small outline that most rows of the tables ask.
inline constexpr const char* kOutline = R"(
heading A
  task b @done=true @n=3
    note c @n=12
  task d @due=2024-01-02T10:00:00Z @who=Ana
  hr e
heading F @who=ana
  heading G
    task h @done=false @n=abc
  body Éclair @who=Éva
body j
)";

/// A path and the texts of the rows that it selects.
struct Selection {
  const char* path;
  const char* rows;
};

/// An outline of lines "type text @name=value …", two blanks for each level.
std::unique_ptr<Outline> outlineOf(std::string_view lines);
/// The texts of the rows that the path selects, with blanks between; "error: …" where it cannot be evaluated.
std::string selected(const Outline& outline, const std::string& path, const EditorView* editor = nullptr,
                     const Budget& budget = {}, const Clock& clock = SystemClock());

}  // namespace vell::evaluation

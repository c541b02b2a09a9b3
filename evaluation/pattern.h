#pragma once

#include <memory>
#include <string_view>

#include "evaluation/work.h"

namespace vell::evaluation {

/// A regular expression in the syntax of Perl, over characters and not bytes. Throws EvaluationError where it
/// is not valid.
class Pattern {
 public:
  Pattern(std::string_view pattern, bool ignoreCase);
  /// Throws EvaluationError where searching the text would take too long.
  bool isIn(std::string_view text, Work& work) const;

 private:
  struct Compiled;
  std::shared_ptr<const Compiled> compiled_;
};

}  // namespace vell::evaluation

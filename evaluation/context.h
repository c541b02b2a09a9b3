#pragma once

#include <cstddef>
#include <string_view>

#include "document/outline.h"
#include "evaluation/value.h"
#include "outline_path/words.h"

namespace vell::evaluation {

using document::Attribute;
using document::Attributes;
using document::Outline;
using document::Row;
using document::RowType;
using document::Run;
using document::Text;

/// What a predicate is asked about: a row, or one of its runs, and where it stands among the candidates of
/// its step.
struct Context {
  const Row* row = nullptr;
  std::string_view text;
  const Attributes* attributes = nullptr;
  bool isRun = false;
  /// From 1; both are 0 where the step does not need them.
  std::size_t position = 0;
  std::size_t last = 0;

  static Context of(const Row& row) { return {&row, row.text().string(), &row.attributes()}; }
};

/// The editor that an expression is evaluated in: what its functions say about a row.
class EditorView {
 public:
  virtual ~EditorView() = default;
  virtual Value call(outline_path::EditorFunction function, const Row& row) const = 0;
};

}  // namespace vell::evaluation

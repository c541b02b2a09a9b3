#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "outline_path/diagnostic.h"
#include "outline_path/expression.h"
#include "outline_path/trace.h"

namespace vell::outline_path {

/// Where and why a text stops being an outline path.
struct ErrorIndex {
  Diagnostic error;
  /// The offset in the text, in bytes.
  std::size_t index = 0;
};

/// A text together with what parsing it gave.
class OutlinePathWithParse {
 public:
  struct Options {
    /// Whether a bare value is accepted as the whole text.
    bool allowValueExpression = false;
    bool trace = false;
  };

  /// What could be written at a place in the text.
  struct Completion {
    /// The beginning of a word that stands there already.
    std::optional<std::string> pattern;
    /// What an item would replace, in bytes.
    struct Range {
      std::size_t begin, end;
    };
    std::optional<Range> range;
    std::vector<std::string> items;
  };

  explicit OutlinePathWithParse(std::string expression);
  OutlinePathWithParse(std::string expression, Options options);

  std::string expression;
  /// The tree; on failure that of the longest well-formed beginning, if there is one.
  std::optional<Expression> parsedExpression;
  /// Absent when tracing was not asked for.
  std::shared_ptr<const TraceContext> traceContext;
  std::optional<ErrorIndex> errorIndex;

  /// The tree text, and on failure the error.
  std::string compactDescription() const;
  /// The tree text, and the trace of what failed where there is one.
  std::string debugDescription() const;
  /// The end of the longest well-formed beginning, from the trace.
  std::optional<std::size_t> longestTopLevelMatch() const;
  /// Completions at the offset `position`, given the names and texts of the attributes known to the caller.
  Completion completion(std::size_t position, std::span<const std::string> attributeNames,
                        std::span<const std::string> attributeTexts) const;

 private:
  bool allowValueExpression_;
};

}  // namespace vell::outline_path

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outline_path/diagnostic.h"
#include "outline_path/expression.h"
#include "outline_path/trace.h"

namespace vell::outline_path {

struct ParseOptions {
  /// Whether a value ("1 + 2") may stand where else only a path may.
  bool allowValueExpression = false;
};

struct ParseResult {
  /// The whole tree; where there is an error, that of the longest beginning of the text that is an
  /// expression, if any.
  std::optional<Expression> expression;
  std::optional<Diagnostic> error;
};

/// The same with what the rules of the grammar did.
struct TracedParseResult {
  std::optional<Expression> expression;
  std::optional<TraceError> error;
  std::shared_ptr<const TraceContext> traceContext;
};

/// Parses an outline path. Takes any bytes, in time linear in their number.
ParseResult parse(std::string_view text, ParseOptions options = {});
TracedParseResult parseTraced(std::string text, ParseOptions options = {});

/// What could stand behind `text`; empty where `text` goes wrong before its end.
std::vector<Expected> expectedBehind(std::string_view text, ParseOptions options = {});

/// Runs what recurses over the tree of a path with that text, and returns behind it. A long text may nest too
/// deep for the stack of this thread: then the work runs on a thread of its own with a large one. What it
/// throws is passed on; std::system_error where the system has no thread left.
void onStackFor(std::string_view text, const std::function<void()>& work);

}  // namespace vell::outline_path

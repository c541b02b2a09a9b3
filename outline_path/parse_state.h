#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "outline_path/diagnostic.h"
#include "outline_path/lookahead.h"
#include "outline_path/trace.h"

namespace vell::outline_path {

/// How deep a tree may be: groups, function calls and the right sides of operators each count one level.
inline constexpr std::size_t maxDepth = 1000;

/// What the rules of one parse share.
struct ParseState {
  ParseState(std::string_view text_, bool allowValueExpression_, TraceContext* trace_ = nullptr)
      : text(text_), allowValueExpression(allowValueExpression_), trace(trace_), lookahead(text_) {}

  std::string_view text;
  bool allowValueExpression;
  /// Null where the parse is not traced.
  TraceContext* trace;
  Lookahead lookahead;
  Expectations expectations;
  std::size_t depth = 0;
  /// Where the depth was first exceeded.
  std::optional<std::size_t> tooDeepAt;
  /// The rules tried so far.
  std::size_t steps = 0;
};

/// One level of depth for as long as it lives.
class Level {
 public:
  Level(ParseState& state, std::size_t at) : state_(state), allowed_(state.depth++ < maxDepth) {
    if (!allowed_ && !state.tooDeepAt) state.tooDeepAt = at;
  }
  ~Level() { --state_.depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  bool allowed() const { return allowed_; }

 private:
  ParseState& state_;
  bool allowed_;
};

}  // namespace vell::outline_path

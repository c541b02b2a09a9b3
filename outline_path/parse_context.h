#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "outline_path/drafts.h"
#include "outline_path/lookahead.h"

namespace vell::outline_path {

class TraceContext;
class Expectations;

/// How deep a tree may be: groups, function calls and the right sides of operators each count one level.
inline constexpr std::size_t kMaxDepth = 1000;

/// What the rules of one parse share.
struct ParseContext {
  ParseContext(std::string_view text_, bool allowValueExpression_)
      : lookahead(text_), text(text_), allowValueExpression(allowValueExpression_) {}

  Lookahead lookahead;
  Drafts drafts;
  std::string_view text;
  bool allowValueExpression;
  /// The table entry that the rule matched last stands for.
  std::uint8_t entry = 0;
  /// The integer matched last.
  std::int64_t integer = 0;
  std::size_t depth = 0;
  /// Where the depth was first exceeded.
  std::optional<std::size_t> tooDeepAt;
  /// Set while a parse is traced, or looked into for what was expected.
  TraceContext* trace = nullptr;
  Expectations* expectations = nullptr;
};

/// Goes one level deeper, and tells whether that is allowed.
inline bool goDeeper(ParseContext& context, std::size_t at) {
  const bool allowed = context.depth++ < kMaxDepth;
  if (!allowed && !context.tooDeepAt) context.tooDeepAt = at;
  return allowed;
}

/// One level of depth for as long as it lives.
class Level {
 public:
  Level(ParseContext& context, std::size_t at) : context_(context), allowed_(goDeeper(context, at)) {}
  ~Level() { --context_.depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  bool allowed() const { return allowed_; }

 private:
  ParseContext& context_;
  bool allowed_;
};

}  // namespace vell::outline_path

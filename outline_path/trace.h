#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "outline_path/diagnostic.h"
#include "outline_path/pile.h"

namespace vell::outline_path {

/// A rule that is traced.
struct TraceRule {
  std::string_view label;
  /// Whether the rule is one to point out: a sign or a keyword.
  bool highlight;
};

/// What the rules of one parse did, in order.
class TraceContext {
 public:
  struct Enter {};
  /// The rule matched up to `end` and produced `output`, the text it stands for.
  struct Match {
    std::size_t end;
    std::string_view output;
  };
  /// The rule failed.
  struct Error {};
  using EventType = std::variant<Enter, Match, Error>;

  struct Event {
    /// The rule's label; lives as long as the program.
    std::string_view label;
    bool highlight;
    std::uint32_t depth;
    /// Where the rule was entered.
    std::size_t index;
    EventType type;
  };

  /// A rule that was tried: its entering and leaving, with what it tried in turn between them.
  struct Attempt {
    const TraceRule* rule;
    std::size_t index;
    /// Where it matched up to; `kFailed` where it did not.
    std::size_t end;
    /// The number of attempts that had been made when it was left.
    std::size_t behind;
  };
  static constexpr std::size_t kFailed = std::string_view::npos;

  explicit TraceContext(std::string text) : input(std::move(text)) {}
  // Events refer to the input.
  TraceContext(const TraceContext&) = delete;
  TraceContext& operator=(const TraceContext&) = delete;

  Attempt* enter(const TraceRule& rule, std::size_t index) {
    Attempt* attempt = attempts_.add();
    attempt->rule = &rule;
    attempt->index = index;
    return attempt;
  }
  void leave(Attempt* attempt, std::size_t end) {
    attempt->end = end;
    attempt->behind = attempts_.size();
  }

  std::vector<Event> events() const;

  const std::string input;

 private:
  Pile<Attempt, 96> attempts_;
};

/// A failed parse: why, and what led there.
struct TraceError {
  Diagnostic original;
  std::shared_ptr<const TraceContext> traceContext;
};

struct TraceTextOptions {
  bool withoutMatches = true;
  bool withoutBacktracking = true;
  bool highlight = true;
  /// "ENTER: label" in place of "ENTER label".
  bool withColons = false;
};

/// The events, a line each. `withoutMatches` leaves out what matched and led to no error, and
/// `withoutBacktracking` what failed before the place that the parse came to at most; both leave nothing of a
/// parse that succeeded.
std::string traceText(const TraceContext& trace, TraceTextOptions options = {});

/// The end of the longest whole expression at the beginning of the text.
std::optional<std::size_t> longestTopLevelMatch(const TraceContext& trace);

/// For each event whether it belongs to the branch to the furthest error, or has no failed branch around it.
struct EventFacts {
  bool onErrorBranch = false;
  bool inFailedBranch = false;
  /// The event that enters the same rule.
  std::size_t enteredAt = 0;
};
std::vector<EventFacts> factsOf(const std::vector<TraceContext::Event>& events);

}  // namespace vell::outline_path

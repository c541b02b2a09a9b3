#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "outline_path/diagnostic.h"

namespace vell::outline_path {

/// A rule that is traced.
struct TraceRule {
  std::string_view label;
  /// Whether the rule is one to point out: a sign or a keyword.
  bool highlight;
};

/// What the rules of one parse did, in order.
struct TraceContext {
  struct Enter {};
  /// The rule matched up to `end` and produced `output`, the text it stands for.
  struct Match {
    std::size_t end;
    std::string_view output;
  };
  /// The rule failed: what the parse had expected by then, at the furthest place that it came to.
  struct Error {
    Diagnostic error;
  };
  using EventType = std::variant<Enter, Match, Error>;

  struct Event {
    /// The rule's label; lives as long as the program.
    std::string_view label;
    bool highlight;
    std::size_t depth;
    /// Where the rule was entered.
    std::size_t index;
    EventType type;
  };

  explicit TraceContext(std::string text) : input(std::move(text)) {}
  // Events refer to the input.
  TraceContext(const TraceContext&) = delete;
  TraceContext& operator=(const TraceContext&) = delete;

  void enter(const TraceRule& rule, std::size_t index) {
    events.push_back({rule.label, rule.highlight, depth++, index, Enter{}});
  }
  void leave(const TraceRule& rule, std::size_t index, const EventType& type) {
    events.push_back({rule.label, rule.highlight, --depth, index, type});
  }

  const std::string input;
  std::vector<Event> events;
  /// How many rules have been entered and not left.
  std::size_t depth = 0;
  /// How many rules were tried and operands looked at, a measure of the work that does not vary.
  std::size_t steps = 0;
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

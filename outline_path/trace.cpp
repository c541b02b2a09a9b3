#include "outline_path/trace.h"

#include <algorithm>

namespace vell::outline_path {
namespace {

using Event = TraceContext::Event;

bool isEnter(const Event& event) { return std::holds_alternative<TraceContext::Enter>(event.type); }
bool isMatch(const Event& event) { return std::holds_alternative<TraceContext::Match>(event.type); }
bool isError(const Event& event) { return std::holds_alternative<TraceContext::Error>(event.type); }

/// The first error at the furthest place, if the parse as a whole failed.
std::optional<std::size_t> furthestError(const std::vector<Event>& events) {
  if (events.empty() || !isError(events.back())) return std::nullopt;
  std::size_t furthest = events.size() - 1;
  for (std::size_t i = events.size(); i-- > 0;) {
    if (isError(events[i]) && events[i].index >= events[furthest].index) furthest = i;
  }
  return furthest;
}

/// Pairs each leaving event with its entering one, in both directions.
std::vector<std::size_t> pairsOf(const std::vector<Event>& events) {
  std::vector<std::size_t> pairs(events.size());
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < events.size(); ++i) {
    if (isEnter(events[i])) {
      open.push_back(i);
      continue;
    }
    pairs[i] = open.back();
    pairs[open.back()] = i;
    open.pop_back();
  }
  return pairs;
}

std::string_view wordFor(const Event& event) {
  if (isEnter(event)) return "ENTER";
  return isMatch(event) ? "MATCH" : "ERROR";
}

std::string lineOf(const Event& event, TraceTextOptions options) {
  std::string line(std::size_t{2} * event.depth, ' ');
  line += wordFor(event);
  line += options.withColons ? ": " : " ";
  line += event.label;
  const auto* match = std::get_if<TraceContext::Match>(&event.type);
  if (options.highlight && event.highlight && match != nullptr)
    line += " \"" + std::string(match->output) + '"';
  return line + '\n';
}

bool isShown(const Event& event, bool leavesMatch, const EventFacts& facts, TraceTextOptions options) {
  if (facts.onErrorBranch) return !(options.withoutMatches && isMatch(event));
  if (options.withoutBacktracking && (!leavesMatch || facts.inFailedBranch)) return false;
  return !(options.withoutMatches && leavesMatch);
}

}  // namespace

std::vector<EventFacts> factsOf(const std::vector<Event>& events) {
  const auto pairs = pairsOf(events);
  const auto error = furthestError(events);
  std::vector<EventFacts> facts(events.size());
  std::size_t failedAround = 0;
  for (std::size_t i = 0; i < events.size(); ++i) {
    const std::size_t entered = isEnter(events[i]) ? i : pairs[i];
    const std::size_t left = isEnter(events[i]) ? pairs[i] : i;
    const bool leadsToError = error && entered <= *error && left >= *error;
    const bool isDeadEnd = isError(events[left]) && !leadsToError;
    if (!isEnter(events[i]) && isDeadEnd) --failedAround;
    facts[i] = {leadsToError, failedAround != 0, entered};
    if (isEnter(events[i]) && isDeadEnd) ++failedAround;
  }
  return facts;
}

std::string traceText(const TraceContext& trace, TraceTextOptions options) {
  const auto& events = trace.events;
  const auto facts = factsOf(events);
  const auto pairs = pairsOf(events);
  std::string text;
  for (std::size_t i = 0; i < facts.size(); ++i) {
    const Event& event = events[i];
    const bool leavesMatch = isMatch(isEnter(event) ? events[pairs[i]] : event);
    if (isShown(event, leavesMatch, facts[i], options)) text += lineOf(event, options);
  }
  return text;
}

std::optional<std::size_t> longestTopLevelMatch(const TraceContext& trace) {
  std::optional<std::size_t> longest;
  for (const Event& event : trace.events) {
    const auto* match = std::get_if<TraceContext::Match>(&event.type);
    if (match == nullptr || event.depth != 1) continue;
    longest = std::max(longest.value_or(0), match->end);
  }
  return longest;
}

}  // namespace vell::outline_path

#include "outline_path/parse.h"

#include "outline_path/actions.h"
#include "outline_path/control.h"
#include "platform/thread.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

namespace pegtl = tao::pegtl;

/// Where every byte opens a level these take 2 MB at most; under the address sanitizer 4 MB.
constexpr std::size_t shortText = 400;
/// A level of nesting takes up to 14 KB, under the address sanitizer 42 KB. What is not touched costs
/// nothing.
constexpr std::size_t stackBytes = 64 << 20;

/// Whether the whole text matches the grammar.
bool match(ParseState& state, TopLevel& top) {
  bool matched = false;
  onStackFor(state.text, [&] {
    rules::Input in = rules::inputOf(state.text);
    matched = pegtl::parse<grammar::OutlinePathParser, Action, Control>(in, state, top);
  });
  return matched;
}

/// Why the text of a parse that failed is no expression as a whole.
Diagnostic diagnose(const ParseState& state, const TopLevel& top) {
  using Kind = Diagnostic::Kind;
  if (isLoneWord(state.text))
    return {Kind::loneWord, state.text.find_first_not_of("( \t\n\v\f\r"), {Expected::path}};
  if (state.tooDeepAt) return {Kind::tooDeep, *state.tooDeepAt, {}};
  Diagnostic diagnostic{Kind::unexpected, state.expectations.furthest(), state.expectations.all()};
  // The argument of an open call ends where a relation stands: the call was meant to be closed before it.
  if (state.lookahead.sawOpenCall() && relationAt(state.text.substr(diagnostic.index)))
    return {Kind::unexpected, state.text.size(), {Expected::closingBracket}};
  if (diagnostic.expected.contains(Expected::integer)) diagnostic.kind = Kind::notAnInteger;
  if (top.expression && skipBlanks(state.text, top.end) == diagnostic.index) diagnostic.kind = Kind::leftover;
  return diagnostic;
}

ParseResult parseValid(std::string_view text, ParseOptions options, TraceContext* trace) {
  ParseState state(text, options.allowValueExpression, trace);
  TopLevel top;
  const bool matched = match(state, top);
  if (trace != nullptr) trace->steps = state.steps + state.lookahead.steps();
  ParseResult result;
  if (!matched || state.tooDeepAt) result.error = diagnose(state, top);
  result.expression = std::move(top.expression);
  return result;
}

ParseResult parseAny(std::string_view text, ParseOptions options, TraceContext* trace) {
  const auto invalid = text::findInvalidUtf8(text);
  if (!invalid) return parseValid(text, options, trace);
  ParseResult result = parseValid(text.substr(0, *invalid), options, trace);
  result.error = Diagnostic{Diagnostic::Kind::invalidUtf8, *invalid, {}};
  return result;
}

}  // namespace

ParseResult parse(std::string_view text, ParseOptions options) { return parseAny(text, options, nullptr); }

TracedParseResult parseTraced(std::string text, ParseOptions options) {
  const auto trace = std::make_shared<TraceContext>(std::move(text));
  ParseResult result = parseAny(trace->input, options, trace.get());
  TracedParseResult traced{std::move(result.expression), std::nullopt, trace};
  if (result.error) traced.error = TraceError{*result.error, trace};
  return traced;
}

std::vector<Expected> expectedBehind(std::string_view text, ParseOptions options) {
  if (text::findInvalidUtf8(text)) return {};
  ParseState state(text, options.allowValueExpression);
  TopLevel top;
  match(state, top);
  if (state.tooDeepAt || state.expectations.furthest() != text.size()) return {};
  return state.expectations.all().inOrder();
}

void onStackFor(std::string_view text, const std::function<void()>& work) {
  text.size() <= shortText ? work() : platform::onStackOf(stackBytes, work);
}

}  // namespace vell::outline_path

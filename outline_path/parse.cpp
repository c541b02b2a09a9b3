#include "outline_path/parse.h"

#include "outline_path/diagnosing.h"
#include "outline_path/in_place.h"
#include "outline_path/tracing.h"
#include "outline_path/tree_of.h"
#include "outline_path/unwatched.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

namespace pegtl = tao::pegtl;
using Input = pegtl::memory_input<pegtl::tracking_mode::lazy, pegtl::eol::lf, const char*>;

Input inputOf(std::string_view text) { return Input(text.data(), text.size(), ""); }

bool isLoneWord(std::string_view text, bool allowValueExpression) {
  ParseContext context(text, allowValueExpression);
  Input in = inputOf(text);
  return pegtl::parse<pegtl::seq<grammar::OptionalBlanks, grammar::LoneWord>>(in, context);
}

std::size_t wordIndex(std::string_view text) {
  std::size_t at = 0;
  while (isBlank(text[at]) || text[at] == '(') ++at;
  return at;
}

/// Parses only to see how far that goes and what was expected there; returns where it was too deep, if so.
std::optional<std::size_t> probe(std::string_view text, ParseOptions options, Expectations& expectations) {
  ParseContext context(text, options.allowValueExpression);
  context.expectations = &expectations;
  Input in = inputOf(text);
  static_cast<void>(pegtl::parse<grammar::OutlinePathParser, pegtl::nothing, Diagnosing>(in, context));
  return context.tooDeepAt;
}

bool contains(const std::vector<Expected>& all, Expected expected) {
  return std::find(all.begin(), all.end(), expected) != all.end();
}

/// Why `text`, of which the first `wellFormed` bytes are an expression, is none as a whole.
Diagnostic diagnose(std::string_view text, ParseOptions options, std::optional<std::size_t> wellFormed) {
  using Kind = Diagnostic::Kind;
  if (isLoneWord(text, options.allowValueExpression))
    return {Kind::loneWord, wordIndex(text), {Expected::path}};
  Expectations expectations;
  if (const auto tooDeep = probe(text, options, expectations)) return {Kind::tooDeep, *tooDeep, {}};
  Diagnostic diagnostic{Kind::unexpected, expectations.furthest(), expectations.all()};
  if (contains(diagnostic.expected, Expected::integer)) diagnostic.kind = Kind::notAnInteger;
  if (wellFormed && skipBlanks(text, *wellFormed) == diagnostic.index) diagnostic.kind = Kind::leftover;
  return diagnostic;
}

void putTree(const TopLevel& top, std::optional<Expression>& tree) {
  const Draft* draft = top.expression;
  if (draft == nullptr) return;
  if (top.isPath) {
    tree.emplace(std::in_place_type<PathExpression>, InPlace{[draft] { return pathOf(*draft); }});
  } else {
    tree.emplace(std::in_place_type<ValueExpression>, InPlace{[draft] { return valueOf(*draft); }});
  }
}

template <template <typename> class Control>
ParseResult parseValid(std::string_view text, ParseOptions options, TraceContext* trace) {
  ParseContext context(text, options.allowValueExpression);
  context.trace = trace;
  Input in = inputOf(text);
  TopLevel top;
  const bool whole = pegtl::parse<grammar::OutlinePathParser, Build, Control>(in, context, top);
  ParseResult result;
  putTree(top, result.expression);
  if (whole && !context.tooDeepAt) return result;
  result.error = diagnose(text, options, result.expression ? std::optional(top.end) : std::nullopt);
  return result;
}

template <template <typename> class Control>
ParseResult parseAny(std::string_view text, ParseOptions options, TraceContext* trace) {
  const auto invalid = text::findInvalidUtf8(text);
  if (!invalid) return parseValid<Control>(text, options, trace);
  ParseResult result = parseValid<Control>(text.substr(0, *invalid), options, trace);
  result.error = Diagnostic{Diagnostic::Kind::invalidUtf8, *invalid, {}};
  return result;
}

}  // namespace

ParseResult parse(std::string_view text, ParseOptions options) {
  return parseAny<Unwatched>(text, options, nullptr);
}

ParseResult parseTraced(TraceContext& trace, ParseOptions options) {
  return parseAny<Tracing>(trace.input, options, &trace);
}

std::vector<Expected> expectedBehind(std::string_view text, ParseOptions options) {
  Expectations expectations;
  if (text::findInvalidUtf8(text) || probe(text, options, expectations)) return {};
  return expectations.furthest() == text.size() ? expectations.all() : std::vector<Expected>();
}

}  // namespace vell::outline_path

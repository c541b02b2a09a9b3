#include "outline_path/with_parse.h"

#include "outline_path/parse.h"
#include "outline_path/print.h"

namespace vell::outline_path {
namespace {

std::string headerAndTree(const OutlinePathWithParse& path) {
  std::string text = path.errorIndex ? "-- Parse Tree (Partial) --\n\n" : "-- Parse Tree --\n\n";
  if (path.parsedExpression) text += treeText(*path.parsedExpression) + "\n";
  return text;
}

std::string errorBlock(const OutlinePathWithParse& path) {
  if (!path.errorIndex) return "";
  return "-- Parse Error --\n\n" + render(path.errorIndex->error, path.expression);
}

}  // namespace

OutlinePathWithParse::OutlinePathWithParse(std::string text)
    : OutlinePathWithParse(std::move(text), Options()) {}

OutlinePathWithParse::OutlinePathWithParse(std::string text, Options options)
    : expression(std::move(text)), allowValueExpression_(options.allowValueExpression) {
  const ParseOptions parseOptions{options.allowValueExpression};
  if (options.trace) {
    TracedParseResult result = parseTraced(expression, parseOptions);
    parsedExpression = std::move(result.expression);
    traceContext = std::move(result.traceContext);
    if (result.error) errorIndex = ErrorIndex{result.error->original, result.error->original.index};
  } else {
    ParseResult result = parse(expression, parseOptions);
    parsedExpression = std::move(result.expression);
    if (result.error) errorIndex = ErrorIndex{*result.error, result.error->index};
  }
}

std::string OutlinePathWithParse::compactDescription() const {
  return headerAndTree(*this) + errorBlock(*this);
}

std::string OutlinePathWithParse::debugDescription() const {
  const std::string trace = traceContext ? traceText(*traceContext) : "";
  if (trace.empty()) return compactDescription();
  return headerAndTree(*this) + "-- Parse Trace --\n\n" + trace + "\n";
}

std::optional<std::size_t> OutlinePathWithParse::longestTopLevelMatch() const {
  return traceContext ? outline_path::longestTopLevelMatch(*traceContext) : std::nullopt;
}

}  // namespace vell::outline_path

#include "evaluation/compiler.h"

#include <cmath>

#include "text/folding.h"
#include "text/utf8.h"

namespace vell::evaluation {
namespace {

using outline_path::FunctionKind;

Value truth(bool value) { return value; }
Value number(std::size_t value) { return static_cast<double>(value); }

bool isAlone(const Row& row) { return row.previous() == nullptr && row.next() == nullptr; }

/// Functions of the row alone.
Value functionOfRow(FunctionKind kind, const Row& row, const LazyOrdinals& ordinals) {
  switch (kind) {
    case FunctionKind::root:
      return truth(row.level() == 1);
    case FunctionKind::parent:
      return truth(row.firstChild() != nullptr);
    case FunctionKind::leaf:
      return truth(row.firstChild() == nullptr);
    case FunctionKind::level:
      return number(row.level());
    case FunctionKind::firstChild:
      return truth(row.previous() == nullptr);
    case FunctionKind::lastChild:
      return truth(row.next() == nullptr);
    case FunctionKind::onlyChild:
      return truth(isAlone(row));
    case FunctionKind::firstOfType:
      return truth(ordinals().fromFirst(row) == 1);
    case FunctionKind::lastOfType:
      return truth(ordinals().fromLast(row) == 1);
    case FunctionKind::onlyOfType:
      return truth(ordinals().fromFirst(row) == 1 && ordinals().fromLast(row) == 1);
    case FunctionKind::nthChild:
      return number(row.index() + std::size_t{1});
    case FunctionKind::nthOfType:
      return number(ordinals().fromFirst(row));
    default:
      return {};
  }
}

std::size_t charactersIn(std::string_view string) {
  std::size_t count = 0;
  for (const char c : string) count += text::isContinuation(c) ? 0 : 1;
  return count;
}

/// Where the first match of `wanted` in the text begins, or where the last one ends, in characters.
Value positionOfMatch(std::string_view text, std::string_view wanted, bool atEnd) {
  const std::string folded = text::foldCase(text);
  const std::string term = text::foldCase(wanted);
  const std::size_t found = atEnd ? folded.rfind(term) : folded.find(term);
  if (found == std::string::npos) return {};
  return number(charactersIn(std::string_view(folded).substr(0, atEnd ? found + term.size() : found)));
}

double rounded(FunctionKind kind, double value) {
  if (kind == FunctionKind::floor) return std::floor(value);
  if (kind == FunctionKind::ceil) return std::ceil(value);
  return std::floor(value + 0.5);
}

struct Arity {
  std::size_t least, most;
};

Arity arityOf(FunctionKind kind) {
  switch (kind) {
    case FunctionKind::round:
    case FunctionKind::floor:
    case FunctionKind::ceil:
    case FunctionKind::boolean:
    case FunctionKind::startOfMatches:
    case FunctionKind::endOfMatches:
      return {1, 1};
    case FunctionKind::nthChild:
    case FunctionKind::nthOfType:
      return {0, 1};
    default:
      return {0, 0};
  }
}

void checkArity(const outline_path::FunctionCall& call, Arity arity) {
  const std::size_t given = call.arguments().size();
  if (given >= arity.least && given <= arity.most) return;
  const std::string wanted = arity.most == 0    ? "no argument"
                             : arity.least == 0 ? "at most one argument"
                                                : "one argument";
  throw EvaluationError(call.name() + "() takes " + wanted + ", not " + std::to_string(given));
}

/// The date that a text in the path spells is known before the first row is.
Getter compileDate(const outline_path::FunctionCall& call, const Getter& argument, const Dates& dates) {
  const auto dateOf = [&dates](const Value& value) {
    const auto date = dates.dateOf(value);
    return date ? std::visit([](auto either) { return Value(either); }, *date) : Value();
  };
  const std::string* text = constantText(call.arguments().front());
  if (text == nullptr)
    return [argument, dateOf](const Context& context) { return dateOf(argument(context)); };
  const Value date = dateOf(std::string_view(*text));
  if (isNull(date))
    throw EvaluationError("\"" + *text +
                          "\" is no date: write date(\"2026-05-04\") or date(\"2026-05-04T12:00\")");
  return [date](const Context&) { return date; };
}

}  // namespace

std::optional<Getter> compileDateFunction(const outline_path::FunctionCall& call,
                                          const std::vector<Getter>& arguments, const Dates& dates) {
  using outline_path::DateFunction;
  const auto function = outline_path::dateFunctionOf(call.name());
  if (!function) return std::nullopt;
  const std::size_t wanted = function == DateFunction::date ? 1 : 0;
  checkArity(call, {wanted, wanted});
  if (function == DateFunction::date) return compileDate(call, arguments.front(), dates);
  return [date = function == DateFunction::now ? Value(dates.now()) : Value(dates.today())](const Context&) {
    return date;
  };
}

std::optional<Getter> compileFunction(const outline_path::FunctionCall& call,
                                      const std::vector<Getter>& arguments, const LazyOrdinals& ordinals) {
  const FunctionKind kind = call.meta().kind;
  if (kind == FunctionKind::other || kind == FunctionKind::count) return std::nullopt;
  checkArity(call, arityOf(kind));
  switch (kind) {
    case FunctionKind::position:
      return [](const Context& context) { return number(context.position); };
    case FunctionKind::last:
      return [](const Context& context) { return number(context.last); };
    case FunctionKind::boolean:
      return [get = arguments[0]](const Context& context) { return truth(truthOf(get(context))); };
    case FunctionKind::round:
    case FunctionKind::floor:
    case FunctionKind::ceil:
      return [kind, get = arguments[0]](const Context& context) -> Value {
        return rounded(kind, numberOf(get(context)));
      };
    case FunctionKind::startOfMatches:
    case FunctionKind::endOfMatches:
      return [kind, get = arguments[0]](const Context& context) {
        std::string buffer;
        const Value wanted = get(context);
        return positionOfMatch(context.text, textOf(wanted, buffer), kind == FunctionKind::endOfMatches);
      };
    default:
      break;
  }
  const Getter function = [kind, ordinals](const Context& context) {
    return functionOfRow(kind, *context.row, ordinals);
  };
  if (arguments.empty()) return function;
  return [function, get = arguments[0]](const Context& context) {
    return truth(numberOf(function(context)) == numberOf(get(context)));
  };
}

}  // namespace vell::evaluation

#include "evaluation/compiler.h"

#include <memory>

#include "evaluation/comparison.h"
#include "evaluation/pattern.h"
#include "outline_path/near_miss.h"
#include "text/folding.h"

namespace vell::evaluation {
namespace {

using namespace outline_path;

using RowAttribute = outline_path::Attribute;

constexpr std::string_view runType = "run";
/// Bytes of text that are searched in one step.
constexpr std::size_t stretch = 32;

Value textValue(std::string_view text) { return text; }

/// The row's identifier: the persistent one, or else that of the session.
Value idOf(const Row& row) {
  if (row.persistentId().empty()) return std::to_string(row.id());
  return textValue(row.persistentId());
}

/// Throws where a bare word stands that was meant as a date: `today` is text, which is ordered by its
/// letters.
void rejectDateWord(const ValueExpression& value) {
  const auto* unquoted = std::get_if<Unquoted>(&value.node);
  const std::string hint = unquoted == nullptr ? "" : hintForDateWord(unquoted->word);
  if (!hint.empty()) throw EvaluationError(hint);
}

bool comparesOrderOrDates(const Relation& relation) {
  const bool comparesDates =
      relation.modifier && relation.modifier->type == RelationModifierType::dateCompare;
  return comparesDates || isOrder(relation.op);
}

/// A pattern that is the same for every row is compiled once.
std::optional<Predicate> compileMatches(const Comparison& comparison, const Getter& left, Work& work) {
  const std::string* text = constantText(comparison.right);
  if (text == nullptr || comparison.relation.op != RelationOp::matches) return std::nullopt;
  const auto& modifier = comparison.relation.modifier;
  const bool ignoreCase = modifier && modifier->type == RelationModifierType::caseInsensitive;
  return [left, pattern = Pattern(*text, ignoreCase), &work](const Context& context) {
    std::string buffer;
    const Value value = left(context);
    return !isNull(value) && pattern.isIn(textOf(value, buffer), work);
  };
}

/// The path that is the only argument of a call.
const PathExpression* pathOf(const FunctionCall& call) {
  if (call.arguments().size() != 1) return nullptr;
  const auto* argument = std::get_if<PathArgument>(&call.arguments().front().node);
  return argument == nullptr ? nullptr : &*argument->path;
}

}  // namespace

const std::string* constantText(const ValueExpression& value) {
  if (const auto* literal = std::get_if<Literal>(&value.node)) return &literal->text;
  if (const auto* unquoted = std::get_if<Unquoted>(&value.node)) return &unquoted->word;
  return nullptr;
}

Compiler::Compiler(const Outline& outline, const EditorView* editor, const Dates& dates, Work& work)
    : outline_(outline),
      editor_(editor),
      dates_(dates),
      work_(work),
      ordinals_([&outline, &work, known = std::make_shared<std::optional<TypeOrdinals>>() ]() -> const auto& {
        if (*known) return **known;
        work.spend(outline.rowsInOrder().size());
        return known->emplace(outline);
      }) {}

Predicate Compiler::compile(const PredicateExpression& predicate) const {
  return std::visit([this](const auto& node) { return compileNode(node); }, predicate.node);
}

Getter Compiler::compile(const ValueExpression& value) const {
  return std::visit([this](const auto& node) { return compileNode(node); }, value.node);
}

Predicate Compiler::compileNode(const ContainsText& node) const {
  return [search = text::TextSearch(node.text), &work = work_](const Context& context) {
    work.spend(context.text.size() / stretch);
    return search.isIn(context.text);
  };
}

Predicate Compiler::compileNode(const ContainsAttribute& node) const {
  if (node.attribute.meta().kind != AttributeKind::other) return [](const Context&) { return true; };
  return [name = &node.attribute.name()](const Context& context) {
    return context.attributes->find(*name) != nullptr;
  };
}

Predicate Compiler::compileNode(const Comparison& node) const {
  if (comparesOrderOrDates(node.relation)) {
    rejectDateWord(node.left);
    rejectDateWord(node.right);
  }
  const Getter left = compile(node.left);
  if (auto test = compileMatches(node, left, work_)) return *test;
  return [left, right = compile(node.right), relation = &node.relation, &work = work_,
          &dates = dates_](const Context& context) {
    work.spend(1 + context.text.size() / stretch);
    return holds(left(context), *relation, right(context), work, dates);
  };
}

Predicate Compiler::compileNode(const Or& node) const {
  return [left = compile(*node.left), right = compile(*node.right)](const Context& context) {
    return left(context) || right(context);
  };
}

Predicate Compiler::compileNode(const And& node) const {
  return [left = compile(*node.left), right = compile(*node.right)](const Context& context) {
    return left(context) && right(context);
  };
}

Predicate Compiler::compileNode(const Not& node) const {
  return [operand = compile(*node.operand)](const Context& context) { return !operand(context); };
}

Predicate Compiler::compileNode(const PredicateGroup& node) const { return compile(*node.inner); }

Getter Compiler::compileNode(const Null&) const {
  return [](const Context&) { return Value(); };
}
Getter Compiler::compileNode(bool truth) const {
  return [truth](const Context&) { return Value(truth); };
}
Getter Compiler::compileNode(double number) const {
  return [number](const Context&) { return Value(number); };
}

Getter Compiler::compileNode(const RowAttribute& attribute) const {
  switch (attribute.meta().kind) {
    case AttributeKind::id:
      return [](const Context& context) { return idOf(*context.row); };
    case AttributeKind::text:
      return [](const Context& context) { return textValue(context.text); };
    case AttributeKind::type:
      return [](const Context& context) {
        return textValue(context.isRun ? runType : name(context.row->type()));
      };
    case AttributeKind::other:
      break;
  }
  return
      [name = &attribute.name(), time = timeAttributeOf(attribute.name())](const Context& context) -> Value {
        const std::string* value = context.attributes->find(*name);
        if (value != nullptr) return textValue(*value);
        if (!time) return {};
        const Row& row = *context.row;
        return Moment(
            std::chrono::milliseconds(*time == TimeAttribute::created ? row.created() : row.modified()));
      };
}

Getter Compiler::compileNode(const Variable& variable) const {
  throw EvaluationError("there is no variable $" + variable.name + " here");
}
Getter Compiler::compileNode(const Literal& literal) const {
  return [text = &literal.text](const Context&) { return textValue(*text); };
}
Getter Compiler::compileNode(const Unquoted& unquoted) const {
  return [text = &unquoted.word](const Context&) { return textValue(*text); };
}

Getter Compiler::compileNode(const Additive& node) const {
  rejectDateWord(*node.left);
  rejectDateWord(*node.right);
  const bool adds = node.op == AdditiveOp::add;
  return [adds, left = compile(*node.left), right = compile(*node.right),
          &dates = dates_](const Context& context) {
    return adds ? dates.add(left(context), right(context)) : dates.subtract(left(context), right(context));
  };
}

Getter Compiler::compileNode(const Multiplicative& node) const {
  const bool divides = node.op == MultiplicativeOp::divide;
  return [divides, left = compile(*node.left), right = compile(*node.right)](const Context& context) {
    const double first = numberOf(left(context));
    const double second = numberOf(right(context));
    return Value(divides ? first / second : first * second);
  };
}

Getter Compiler::compileNode(const Unary& node) const {
  return [operand = compile(*node.operand)](const Context& context) {
    return Value(-numberOf(operand(context)));
  };
}

Getter Compiler::compileNode(const ValueGroup& node) const { return compile(*node.inner); }

Getter Compiler::compileNode(const PathArgument&) const {
  throw EvaluationError("rows stand where a value is needed; only count() and boolean() take rows");
}

Getter Compiler::compileNode(const FunctionCall& call) const {
  const FunctionKind kind = call.meta().kind;
  const auto& arguments = call.arguments();
  const PathExpression* path = pathOf(call);
  if (kind == FunctionKind::count) {
    if (path == nullptr) throw EvaluationError("count() takes one path, as in count(child::*)");
    return compileCount(*path);
  }
  if (kind == FunctionKind::boolean && path != nullptr) {
    return [count = compileCount(*path)](const Context& context) { return Value(truthOf(count(context))); };
  }
  std::vector<Getter> getters;
  getters.reserve(arguments.size());
  for (const ValueExpression& argument : arguments) getters.push_back(compile(argument));
  if (auto function = compileFunction(call, getters, ordinals_)) return *function;
  if (auto function = compileDateFunction(call, getters, dates_)) return *function;
  const auto editorFunction = editorFunctionOf(call.name());
  if (!editorFunction || editor_ == nullptr) {
    const std::string hint = hintForFunction(call.name());
    throw EvaluationError("there is no function " + call.name() + "() here" +
                          (hint.empty() ? "" : "; " + hint));
  }
  if (!arguments.empty()) throw EvaluationError(call.name() + "() takes no argument");
  return [editor = editor_, function = *editorFunction](const Context& context) {
    return editor->call(function, *context.row);
  };
}

}  // namespace vell::evaluation

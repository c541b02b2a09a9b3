#include "outline_path/print.h"

#include "outline_path/literals.h"

namespace vell::outline_path {
namespace {

/// How tightly a node binds; an operand that binds less than its place asks for is put in brackets.
enum class Binding { setUnion, setExcept, setIntersect, orOf, andOf, additive, multiplicative, unary, tight };

Binding bindingOf(const PathExpression& path) {
  if (std::holds_alternative<Union>(path.node)) return Binding::setUnion;
  if (std::holds_alternative<Except>(path.node)) return Binding::setExcept;
  if (std::holds_alternative<Intersect>(path.node)) return Binding::setIntersect;
  return Binding::tight;
}

Binding bindingOf(const PredicateExpression& predicate) {
  if (std::holds_alternative<Or>(predicate.node)) return Binding::orOf;
  if (std::holds_alternative<And>(predicate.node)) return Binding::andOf;
  return Binding::tight;
}

Binding bindingOf(const ValueExpression& value) {
  if (std::holds_alternative<Additive>(value.node)) return Binding::additive;
  if (std::holds_alternative<Multiplicative>(value.node)) return Binding::multiplicative;
  return Binding::tight;
}

Binding tighter(Binding binding) { return static_cast<Binding>(static_cast<int>(binding) + 1); }

/// Whether "/" divides by what `value` begins with.
bool beginsWithDivisor(const ValueExpression& value) {
  if (const auto* sum = std::get_if<Additive>(&value.node)) return beginsWithDivisor(*sum->left);
  if (const auto* product = std::get_if<Multiplicative>(&value.node))
    return beginsWithDivisor(*product->left);
  return !std::holds_alternative<Unquoted>(value.node) && !std::holds_alternative<Null>(value.node) &&
         !std::holds_alternative<bool>(value.node) && !std::holds_alternative<Unary>(value.node);
}

bool endsWithComparison(const PredicateExpression& predicate) {
  if (const auto* node = std::get_if<Or>(&predicate.node)) return endsWithComparison(*node->right);
  if (const auto* node = std::get_if<And>(&predicate.node)) return endsWithComparison(*node->right);
  if (const auto* node = std::get_if<Not>(&predicate.node)) return endsWithComparison(*node->operand);
  return std::holds_alternative<Comparison>(predicate.node);
}

const PredicateExpression& firstTest(const PredicateExpression& predicate) {
  if (const auto* node = std::get_if<Or>(&predicate.node)) return firstTest(*node->left);
  if (const auto* node = std::get_if<And>(&predicate.node)) return firstTest(*node->left);
  return predicate;
}

/// Whether "/" before `next` would divide the end of `step` by its beginning, were no axis between them: to
/// the right of a relation, or to the left of the one that `next` has.
bool wouldDivide(const Step& step, const Step& next) {
  if (step.predicate() == nullptr || step.slice() || next.filter().typeTest) return false;
  const PredicateExpression& first = firstTest(*next.predicate());
  const auto* comparison = std::get_if<Comparison>(&first.node);
  if (comparison != nullptr) return beginsWithDivisor(comparison->left);
  return endsWithComparison(*step.predicate()) && !std::holds_alternative<Not>(first.node);
}

class Printer {
 public:
  std::string take() && { return std::move(text_); }

  void write(const PathExpression& path) {
    std::visit([this](const auto& node) { write(node); }, path.node);
  }
  void write(const PredicateExpression& predicate) {
    std::visit([this](const auto& node) { write(node); }, predicate.node);
  }
  void write(const ValueExpression& value) {
    std::visit([this](const auto& node) { write(node); }, value.node);
  }

  void write(const Relation& relation) {
    text_ += spelling(relation.op);
    if (!relation.modifier) return;
    text_ += '[';
    text_ += spelling(relation.modifier->type);
    if (relation.modifier->list.value_or(false)) text_ += localeAwareLetter;
    text_ += ']';
  }

  void write(const Slice& slice) {
    text_ += '[';
    if (const auto* index = std::get_if<SliceIndex>(&slice)) {
      text_ += std::to_string(index->index);
    } else {
      const auto& range = std::get<SliceRange>(slice);
      if (range.start) text_ += std::to_string(*range.start);
      text_ += ':';
      if (range.end) text_ += std::to_string(*range.end);
    }
    text_ += ']';
  }

 private:
  void write(const Union& node) { binary(node, spelling(SetOp::unionOf), Binding::setUnion); }
  void write(const Except& node) { binary(node, spelling(SetOp::except), Binding::setExcept); }
  void write(const Intersect& node) { binary(node, spelling(SetOp::intersect), Binding::setIntersect); }
  void write(const PathGroup& node) { group(*node.inner); }

  void write(const Path& path) {
    if (path.absolute()) text_ += '/';
    const Step* previous = nullptr;
    for (const Step& step : path.steps()) {
      if (previous != nullptr) text_ += '/';
      const bool isFirstOfRelative = previous == nullptr && !path.absolute();
      write(step, isFirstOfRelative || (previous != nullptr && wouldDivide(*previous, step)));
      previous = &step;
    }
  }

  void write(const Step& step, bool needsAxis) {
    const bool isShortcut = step.axis() == Axis::parentShortcut || step.axis() == Axis::selfShortcut;
    if (needsAxis || step.axis() != Axis::child) text_ += spelling(step.axis());
    const bool isImplied = isShortcut && step.filter() == StepFilter{TypeTest::any, {}};
    if (!isImplied) write(step.filter());
    if (step.slice()) write(*step.slice());
  }
  void write(const StepFilter& filter) {
    if (filter.typeTest) text_ += spelling(*filter.typeTest);
    if (filter.typeTest && filter.predicate) text_ += ' ';
    if (filter.predicate) write(*filter.predicate);
  }

  void write(const Or& node) { binary(node, spelling(PredicateOp::orOf), Binding::orOf); }
  void write(const And& node) { binary(node, spelling(PredicateOp::andOf), Binding::andOf); }
  void write(const Not& node) {
    text_ += spelling(PredicateOp::notOf);
    text_ += ' ';
    operand(*node.operand, Binding::tight);
  }
  void write(const PredicateGroup& node) { group(*node.inner); }
  void write(const ContainsText& node) { text_ += encodeString(node.text); }
  void write(const ContainsAttribute& node) { write(node.attribute); }
  void write(const Comparison& node) {
    write(node.left);
    text_ += ' ';
    write(node.relation);
    text_ += ' ';
    write(node.right);
  }

  void write(const Null&) { text_ += nullWord; }
  void write(bool value) { text_ += value ? trueWord : falseWord; }
  void write(double number) {
    if (number < 0) text_ += spelling(UnaryOp::negate);
    text_ += textOf(number < 0 ? -number : number);
  }
  void write(const Attribute& attribute) { text_ += '@' + attribute.name(); }
  void write(const Variable& variable) { text_ += '$' + variable.name; }
  void write(const Literal& literal) { text_ += encodeString(literal.text); }
  void write(const Unquoted& unquoted) { text_ += unquoted.word; }
  void write(const Additive& node) { binary(node, spelling(node.op), Binding::additive); }
  void write(const Multiplicative& node) {
    operand(*node.left, Binding::unary);
    text_ += ' ';
    text_ += spelling(node.op);
    text_ += ' ';
    const bool needsGroup = node.op == MultiplicativeOp::divide && !beginsWithDivisor(*node.right);
    operand(*node.right, Binding::multiplicative, needsGroup);
  }
  void write(const Unary& node) {
    text_ += spelling(node.op);
    operand(*node.operand, Binding::unary);
  }
  void write(const ValueGroup& node) { group(*node.inner); }
  void write(const PathArgument& node) { write(*node.path); }
  void write(const FunctionCall& call) {
    text_ += call.name();
    text_ += '(';
    bool first = true;
    for (const ValueExpression& argument : call.arguments()) {
      if (!first) text_ += ", ";
      first = false;
      write(argument);
    }
    text_ += ')';
  }

  template <typename Node>
  void binary(const Node& node, std::string_view op, Binding binding) {
    operand(*node.left, tighter(binding));
    text_ += ' ';
    text_ += op;
    text_ += ' ';
    operand(*node.right, binding);
  }
  template <typename Node>
  void operand(const Node& node, Binding atLeast, bool needsGroup = false) {
    if (needsGroup || bindingOf(node) < atLeast) {
      group(node);
    } else {
      write(node);
    }
  }
  template <typename Node>
  void group(const Node& inner) {
    text_ += '(';
    write(inner);
    text_ += ')';
  }

  std::string text_;
};

template <typename Node>
std::string printed(const Node& node) {
  Printer printer;
  printer.write(node);
  return std::move(printer).take();
}

}  // namespace

std::string print(const Expression& expression) {
  return std::visit([](const auto& root) { return print(root); }, expression);
}
std::string print(const PathExpression& path) { return printed(path); }
std::string print(const PredicateExpression& predicate) { return printed(predicate); }
std::string print(const ValueExpression& value) { return printed(value); }
std::string print(const Relation& relation) { return printed(relation); }
std::string print(const Slice& slice) { return printed(slice); }

}  // namespace vell::outline_path

// The tree, a line for each node.
#include <array>

#include "outline_path/literals.h"
#include "outline_path/print.h"

namespace vell::outline_path {
namespace {

struct LineEnd {
  std::string_view text;
  std::string_view escape;
};
// Whatever a terminal or an editor may break a line at.
constexpr std::array lineEnds{LineEnd{"\n", "\\n"},
                              LineEnd{"\r", "\\r"},
                              LineEnd{"\v", "\\u000b"},
                              LineEnd{"\f", "\\f"},
                              LineEnd{"\xC2\x85", "\\u0085"},
                              LineEnd{"\xE2\x80\xA8", "\\u2028"},
                              LineEnd{"\xE2\x80\xA9", "\\u2029"}};

std::string inOneLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    std::string_view shown = text.substr(at, 1);
    for (const LineEnd& end : lineEnds) {
      if (text.substr(at, end.text.size()) != end.text) continue;
      length = end.text.size();
      shown = end.escape;
    }
    line += shown;
    at += length;
  }
  return line;
}

std::string inQuotes(std::string_view text) { return '"' + inOneLine(text) + '"'; }

/// Writes a node a line. The overloads of `write` are the labels and children of each type of node.
class TreeWriter {
 public:
  std::string take() && { return std::move(text_); }

  void write(const Expression& expression) {
    std::visit([this](const auto& root) { write(root); }, expression);
  }
  void write(const PathExpression& expression) {
    std::visit([this](const auto& node) { write(node); }, expression.node);
  }
  void write(const PredicateExpression& expression) {
    std::visit([this](const auto& node) { write(node); }, expression.node);
  }
  void write(const ValueExpression& expression) {
    std::visit([this](const auto& node) { write(node); }, expression.node);
  }

 private:
  void write(const Path& path) {
    line(path.absolute() ? "path" : "path (relative)");
    ++depth_;
    for (const Step& step : path.steps()) write(step);
    --depth_;
  }
  void write(const Union& node) { branch("union", *node.left, *node.right); }
  void write(const Except& node) { branch("except", *node.left, *node.right); }
  void write(const Intersect& node) { branch("intersect", *node.left, *node.right); }
  void write(const PathGroup& node) { branch("group", *node.inner); }

  void write(const Step& step) {
    line("step: " + std::string(caseName(step.axis())) + " axis");
    ++depth_;
    write(step.filter());
    if (step.slice()) line("slice " + print(*step.slice()));
    --depth_;
  }
  void write(const StepFilter& filter) {
    const bool both = filter.typeTest && filter.predicate;
    line(both               ? "StepFilter.typeTestAndPredicate"
         : filter.predicate ? "StepFilter.predicate"
                            : "StepFilter.typeTest");
    if (filter.typeTest) leaf(spelling(*filter.typeTest));
    if (filter.predicate) below(*filter.predicate);
  }

  void write(const ContainsText& node) { line("contains text " + inQuotes(node.text)); }
  void write(const ContainsAttribute& node) { line("contains attribute @" + node.attribute.name()); }
  void write(const Comparison& node) { branch(print(node.relation), node.left, node.right); }
  void write(const Or& node) { branch(spelling(PredicateOp::orOf), *node.left, *node.right); }
  void write(const And& node) { branch(spelling(PredicateOp::andOf), *node.left, *node.right); }
  void write(const Not& node) { branch(spelling(PredicateOp::notOf), *node.operand); }
  void write(const PredicateGroup& node) { branch("group", *node.inner); }

  void write(const Null&) { line(nullWord); }
  void write(bool value) { line(value ? trueWord : falseWord); }
  void write(double number) { line(textOf(number)); }
  void write(const Attribute& attribute) { line("value @" + attribute.name()); }
  void write(const Variable& variable) { line("value $" + variable.name); }
  void write(const Literal& literal) { line("value " + inQuotes(literal.text)); }
  void write(const Unquoted& unquoted) { line("unquoted " + unquoted.word); }
  void write(const Additive& node) { branch(spelling(node.op), *node.left, *node.right); }
  void write(const Multiplicative& node) { branch(spelling(node.op), *node.left, *node.right); }
  void write(const Unary& node) { branch(spelling(node.op), *node.operand); }
  void write(const ValueGroup& node) { branch("group", *node.inner); }
  void write(const PathArgument& node) { write(*node.path); }
  void write(const FunctionCall& call) {
    line("func " + call.name());
    if (call.arguments().empty()) return;
    ++depth_;
    line("args");
    for (const ValueExpression& argument : call.arguments()) below(argument);
    --depth_;
  }

  template <typename... Children>
  void branch(std::string_view label, const Children&... children) {
    line(label);
    (below(children), ...);
  }
  template <typename Child>
  void below(const Child& child) {
    ++depth_;
    write(child);
    --depth_;
  }
  void leaf(std::string_view label) {
    ++depth_;
    line(label);
    --depth_;
  }
  void line(std::string_view label) {
    for (std::size_t i = 0; i < depth_; ++i) text_ += "| ";
    text_ += "+ ";
    text_ += label;
    text_ += '\n';
  }

  std::string text_;
  std::size_t depth_ = 0;
};

}  // namespace

std::string treeText(const Expression& expression) {
  TreeWriter writer;
  writer.write(expression);
  return std::move(writer).take();
}

}  // namespace vell::outline_path

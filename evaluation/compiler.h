#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "evaluation/axes.h"
#include "evaluation/context.h"
#include "evaluation/counts.h"
#include "evaluation/dates.h"
#include "evaluation/value.h"
#include "evaluation/work.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

// An expression is first turned into functions that do as little as possible for each row. They refer to the
// expression, the outline, the editor, the dates and the work, which must outlive them.

/// Whether a predicate holds.
using Predicate = std::function<bool(const Context&)>;
/// The value of an expression.
using Getter = std::function<Value(const Context&)>;
/// Counted when they are first asked for.
using LazyOrdinals = std::function<const TypeOrdinals&()>;

class Compiler {
 public:
  /// `editor` may be null: then there are no editor functions.
  Compiler(const Outline& outline, const EditorView* editor, const Dates& dates, Work& work);

  Work& work() const { return work_; }

  Predicate compile(const outline_path::PredicateExpression& predicate) const;
  Getter compile(const outline_path::ValueExpression& value) const;
  /// The rows that a path selects from a context.
  std::function<Rows(const Context&)> compile(const outline_path::PathExpression& path) const;
  /// How many rows a path selects from a context; of runs, where its last step yields runs.
  Getter compileCount(const outline_path::PathExpression& path) const;

 private:
  Predicate compileNode(const outline_path::ContainsText& node) const;
  Predicate compileNode(const outline_path::ContainsAttribute& node) const;
  Predicate compileNode(const outline_path::Comparison& node) const;
  Predicate compileNode(const outline_path::Or& node) const;
  Predicate compileNode(const outline_path::And& node) const;
  Predicate compileNode(const outline_path::Not& node) const;
  Predicate compileNode(const outline_path::PredicateGroup& node) const;

  Getter compileNode(const outline_path::Null& node) const;
  Getter compileNode(bool truth) const;
  Getter compileNode(double number) const;
  Getter compileNode(const outline_path::Attribute& attribute) const;
  Getter compileNode(const outline_path::Variable& variable) const;
  Getter compileNode(const outline_path::Literal& literal) const;
  Getter compileNode(const outline_path::Unquoted& unquoted) const;
  Getter compileNode(const outline_path::Additive& node) const;
  Getter compileNode(const outline_path::Multiplicative& node) const;
  Getter compileNode(const outline_path::Unary& node) const;
  Getter compileNode(const outline_path::ValueGroup& node) const;
  Getter compileNode(const outline_path::PathArgument& argument) const;
  Getter compileNode(const outline_path::FunctionCall& call) const;

  const Outline& outline_;
  const EditorView* editor_;
  const Dates& dates_;
  Work& work_;
  LazyOrdinals ordinals_;
};

/// A function of the language with its compiled arguments; none where the name is not one of them. Throws
/// EvaluationError where the arguments do not fit.
std::optional<Getter> compileFunction(const outline_path::FunctionCall& call,
                                      const std::vector<Getter>& arguments, const LazyOrdinals& ordinals);
/// The same for the functions that give dates.
std::optional<Getter> compileDateFunction(const outline_path::FunctionCall& call,
                                          const std::vector<Getter>& arguments, const Dates& dates);

/// The text of a value that is the same for every row and is text; null for others.
const std::string* constantText(const outline_path::ValueExpression& value);

}  // namespace vell::evaluation

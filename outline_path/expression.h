#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "outline_path/box.h"
#include "outline_path/words.h"

// The tree of a parsed outline path. All types are values: copied deeply, compared by content. The facts
// called `meta` are worked out when a node is built and never change, so that an evaluator can plan by them.

namespace vell::outline_path {

struct ValueExpression;
struct PredicateExpression;
struct PathExpression;

// Values

/// `@name`.
class Attribute {
 public:
  struct Meta {
    AttributeKind kind = AttributeKind::other;
    /// `hashOfName(name)`, for look-ups.
    std::uint64_t nameHash = 0;
    bool operator==(const Meta&) const = default;
  };

  explicit Attribute(std::string_view name);
  const std::string& name() const { return name_; }
  const Meta& meta() const { return meta_; }
  bool operator==(const Attribute&) const = default;

 private:
  std::string name_;
  Meta meta_;
};

/// The hash kept in `Attribute::Meta`; the same on every run.
std::uint64_t hashOfName(std::string_view name);

/// `name(arguments)`.
class FunctionCall {
 public:
  using Arguments = std::vector<ValueExpression>;

  struct Meta {
    FunctionKind kind = FunctionKind::other;
    bool operator==(const Meta&) const = default;
  };

  FunctionCall(std::string_view name, Arguments arguments);
  const std::string& name() const { return name_; }
  const Arguments& arguments() const { return arguments_; }
  const Meta& meta() const { return meta_; }
  bool operator==(const FunctionCall&) const;

 private:
  std::string name_;
  Arguments arguments_;
  Meta meta_;
};

struct Null {
  bool operator==(const Null&) const = default;
};
/// `$name`.
struct Variable {
  std::string name;
  bool operator==(const Variable&) const = default;
};
/// A double-quoted string, decoded.
struct Literal {
  std::string text;
  bool operator==(const Literal&) const = default;
};
/// A bare word used as a value.
struct Unquoted {
  std::string word;
  bool operator==(const Unquoted&) const = default;
};
struct Additive {
  Box<ValueExpression> left;
  AdditiveOp op;
  Box<ValueExpression> right;
  bool operator==(const Additive&) const = default;
};
struct Multiplicative {
  Box<ValueExpression> left;
  MultiplicativeOp op;
  Box<ValueExpression> right;
  bool operator==(const Multiplicative&) const = default;
};
struct Unary {
  UnaryOp op;
  Box<ValueExpression> operand;
  bool operator==(const Unary&) const = default;
};
struct ValueGroup {
  Box<ValueExpression> inner;
  bool operator==(const ValueGroup&) const = default;
};
/// A path as a function's argument: its rows.
struct PathArgument {
  Box<PathExpression> path;
  bool operator==(const PathArgument&) const = default;
};

struct ValueExpression {
  using Node = std::variant<Null, bool, double, Attribute, FunctionCall, Variable, Literal, Unquoted,
                            Additive, Multiplicative, Unary, ValueGroup, PathArgument>;
  Node node;
  bool operator==(const ValueExpression&) const = default;
};

// Predicates

struct RelationModifier {
  RelationModifierType type = RelationModifierType::caseInsensitive;
  /// Set where the letter "l" (locale-aware) was written; absent where it was not.
  std::optional<bool> list;
  bool operator==(const RelationModifier&) const = default;
};
struct Relation {
  RelationOp op = RelationOp::equal;
  std::optional<RelationModifier> modifier;
  bool operator==(const Relation&) const = default;
};

struct Or {
  Box<PredicateExpression> left, right;
  bool operator==(const Or&) const = default;
};
struct And {
  Box<PredicateExpression> left, right;
  bool operator==(const And&) const = default;
};
struct Not {
  Box<PredicateExpression> operand;
  bool operator==(const Not&) const = default;
};
struct PredicateGroup {
  Box<PredicateExpression> inner;
  bool operator==(const PredicateGroup&) const = default;
};
struct Comparison {
  ValueExpression left;
  Relation relation;
  ValueExpression right;
  bool operator==(const Comparison&) const = default;
};
struct ContainsAttribute {
  Attribute attribute;
  bool operator==(const ContainsAttribute&) const = default;
};
struct ContainsText {
  std::string text;
  bool operator==(const ContainsText&) const = default;
};

struct PredicateExpression {
  using Node = std::variant<ContainsText, ContainsAttribute, Comparison, Or, And, Not, PredicateGroup>;
  Node node;
  bool operator==(const PredicateExpression&) const = default;
};

/// Whether it asks for a position among the candidates of its step or for their number.
bool asksForPosition(const PredicateExpression& predicate);

// Steps

/// A text that a matching row contains, compared as a text test compares it.
struct MatchTerm {
  std::string text;
  // clang-tidy 14 takes the zero that it compares with for a pointer. NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const MatchTerm&) const = default;
};
using MatchTerms = std::set<MatchTerm>;

/// `[index]`; negative counts from the end.
struct SliceIndex {
  std::int64_t index = 0;
  bool operator==(const SliceIndex&) const = default;
};
/// `[start:end]`, the end exclusive; a bound that is left out reaches to that end.
struct SliceRange {
  std::optional<std::int64_t> start, end;
  bool operator==(const SliceRange&) const = default;
};
using Slice = std::variant<SliceIndex, SliceRange>;

/// What a step's candidates must pass: a type test, a predicate, or both.
struct StepFilter {
  std::optional<TypeTest> typeTest;
  std::optional<PredicateExpression> predicate;
  bool operator==(const StepFilter&) const = default;
};

/// One step of a path: from each row along `axis`, those that pass `filter`, of them `slice`.
class Step {
 public:
  using Filter = StepFilter;

  struct Meta {
    /// The step asks for a position among the candidates or their number, or takes a slice of them.
    bool requiresContextPositions = false;
    /// Each of these stands in the text of every row that the step selects.
    MatchTerms matchingTerms;
    bool operator==(const Meta&) const = default;
  };

  Step(Axis axis, Filter filter, const std::optional<Slice>& slice = {});
  Axis axis() const { return axis_; }
  const Filter& filter() const { return filter_; }
  const std::optional<Slice>& slice() const { return slice_; }
  const Meta& meta() const { return meta_; }
  /// The filter's predicate, null where it has none.
  const PredicateExpression* predicate() const { return filter_.predicate ? &*filter_.predicate : nullptr; }
  bool operator==(const Step&) const = default;

 private:
  Axis axis_;
  Filter filter_;
  std::optional<Slice> slice_;
  Meta meta_;
};

using Steps = std::vector<Step>;

// Paths

/// What a whole path amounts to, for evaluators with a short cut for it. The "single self" shapes are
/// relative paths of one self step without a slice; what they look for stands in that step's filter.
enum class MatchShape : std::uint8_t {
  singleSelfTypeTest,
  /// A single attribute test, perhaps with a type test.
  singleSelfContainsAttribute,
  /// A single text test, perhaps with a type test.
  singleSelfContainsText,
  singleSelfPredicate,
  allSingleElementSteps,
  general,
};

/// Steps, from the root where `absolute`, else from the context row. "/" alone has no steps.
class Path {
 public:
  struct Meta {
    bool requiresContextPositions = false;
    /// Every step selects at most one row from each row, so the path selects at most one.
    bool allSingleElementSteps = true;
    /// The terms of all steps: where no row of an outline contains one of them the path selects nothing.
    MatchTerms matchingTerms;
    MatchShape matchShape = MatchShape::allSingleElementSteps;
    bool operator==(const Meta&) const = default;
  };

  /// The relative path without steps, which no text stands for.
  Path() = default;
  Path(bool absolute, Steps steps);
  bool absolute() const { return absolute_; }
  const Steps& steps() const { return steps_; }
  const Meta& meta() const { return meta_; }
  bool operator==(const Path&) const = default;

 private:
  bool absolute_ = false;
  Steps steps_;
  Meta meta_;
};

/// The shape of a path with these parts; `allSingleElementSteps` as in `Path::Meta`.
MatchShape computeMatchShape(bool absolute, const Steps& steps, bool allSingleElementSteps);

struct Union {
  Box<PathExpression> left, right;
  bool operator==(const Union&) const = default;
};
struct Except {
  Box<PathExpression> left, right;
  bool operator==(const Except&) const = default;
};
struct Intersect {
  Box<PathExpression> left, right;
  bool operator==(const Intersect&) const = default;
};
struct PathGroup {
  Box<PathExpression> inner;
  bool operator==(const PathGroup&) const = default;
};

struct PathExpression {
  using Node = std::variant<Path, Union, Except, Intersect, PathGroup>;
  Node node;
  bool operator==(const PathExpression&) const = default;
};

/// The root of the tree.
using Expression = std::variant<PathExpression, ValueExpression>;

}  // namespace vell::outline_path

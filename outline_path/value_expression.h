#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "outline_path/box.h"
#include "outline_path/operators.h"
#include "outline_path/words.h"

// A part of the tree; include "outline_path/expression.h", which completes the types named here.

namespace vell::outline_path {

struct PathExpression;
struct ValueExpression;

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
  using Arguments = std::vector<ValueExpression, NodeAllocator<ValueExpression>>;

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

/// The expression of the same kind that `expression` ends with, null where it ends with none.
inline Box<ValueExpression>* lastPart(ValueExpression& expression) {
  if (auto* node = std::get_if<Additive>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Multiplicative>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Unary>(&expression.node)) return &node->operand;
  if (auto* node = std::get_if<ValueGroup>(&expression.node)) return &node->inner;
  return nullptr;
}

}  // namespace vell::outline_path

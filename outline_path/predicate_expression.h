#pragma once

#include <optional>
#include <string>
#include <variant>

#include "outline_path/value_expression.h"

// A part of the tree; include "outline_path/expression.h", which completes the types named here.

namespace vell::outline_path {

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

struct PredicateExpression;

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

/// The expression of the same kind that `expression` ends with, null where it ends with none.
inline Box<PredicateExpression>* lastPart(PredicateExpression& expression) {
  if (auto* node = std::get_if<And>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Or>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Not>(&expression.node)) return &node->operand;
  if (auto* node = std::get_if<PredicateGroup>(&expression.node)) return &node->inner;
  return nullptr;
}

}  // namespace vell::outline_path

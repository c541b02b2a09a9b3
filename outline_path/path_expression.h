#pragma once

#include <variant>
#include <vector>

#include "outline_path/step.h"

// A part of the tree; include "outline_path/expression.h", which completes the types named here.

namespace vell::outline_path {

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

/// The expression of the same kind that `expression` ends with, null where it ends with none.
inline Box<PathExpression>* lastPart(PathExpression& expression) {
  if (auto* node = std::get_if<Union>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Except>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<Intersect>(&expression.node)) return &node->right;
  if (auto* node = std::get_if<PathGroup>(&expression.node)) return &node->inner;
  return nullptr;
}

}  // namespace vell::outline_path

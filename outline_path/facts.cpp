// The facts of `meta`, worked out as the nodes are built.
#include <algorithm>

#include "outline_path/expression.h"

namespace vell::outline_path {
namespace {

template <typename T>
const T* nodeOf(const PredicateExpression& predicate) {
  return std::get_if<T>(&predicate.node);
}

// A path argument has contexts of its own: the positions asked for in it are not those of this step.
bool asksForPosition(const ValueExpression& value) {
  const auto both = [](const auto& node) {
    return asksForPosition(*node.left) || asksForPosition(*node.right);
  };
  if (const auto* call = std::get_if<FunctionCall>(&value.node)) {
    const FunctionKind kind = call->meta().kind;
    if (kind == FunctionKind::position || kind == FunctionKind::last) return true;
    const auto& arguments = call->arguments();
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const ValueExpression& argument) { return asksForPosition(argument); });
  }
  if (const auto* node = std::get_if<Additive>(&value.node)) return both(*node);
  if (const auto* node = std::get_if<Multiplicative>(&value.node)) return both(*node);
  if (const auto* node = std::get_if<Unary>(&value.node)) return asksForPosition(*node->operand);
  if (const auto* node = std::get_if<ValueGroup>(&value.node)) return asksForPosition(*node->inner);
  return false;
}

MatchTerms termsOf(std::string_view text) {
  return text.empty() ? MatchTerms() : MatchTerms{{std::string(text)}};
}

MatchTerms unite(MatchTerms left, const MatchTerms& right) {
  left.insert(right.begin(), right.end());
  return left;
}

MatchTerms common(const MatchTerms& left, const MatchTerms& right) {
  MatchTerms both;
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(),
                        std::inserter(both, both.end()));
  return both;
}

/// Whether a relation with plain text on its right holds only where the left contains that text. Comparing
/// numbers, dates or by locale finds texts equal that are written differently.
bool impliesContaining(const Relation& relation) {
  const bool byText =
      !relation.modifier ||
      (relation.modifier->type <= RelationModifierType::caseInsensitive && !relation.modifier->list);
  return byText && (relation.op == RelationOp::contains || relation.op == RelationOp::beginsWith ||
                    relation.op == RelationOp::endsWith || relation.op == RelationOp::equal);
}

MatchTerms termsOf(const Comparison& comparison) {
  const auto* attribute = std::get_if<Attribute>(&comparison.left.node);
  const bool isText = attribute != nullptr && attribute->meta().kind == AttributeKind::text;
  if (!isText || !impliesContaining(comparison.relation)) return {};
  // An unquoted word or a number may be compared as something else than its text.
  const auto* literal = std::get_if<Literal>(&comparison.right.node);
  return literal == nullptr ? MatchTerms() : termsOf(literal->text);
}

MatchTerms termsOf(const PredicateExpression& predicate) {
  if (const auto* node = nodeOf<ContainsText>(predicate)) return termsOf(node->text);
  if (const auto* node = nodeOf<Comparison>(predicate)) return termsOf(*node);
  if (const auto* node = nodeOf<And>(predicate)) return unite(termsOf(*node->right), termsOf(*node->left));
  if (const auto* node = nodeOf<Or>(predicate)) return common(termsOf(*node->left), termsOf(*node->right));
  if (const auto* node = nodeOf<PredicateGroup>(predicate)) return termsOf(*node->inner);
  return {};
}

/// A slice that is an index leaves one row of the candidates.
bool isSingleElement(const Step& step) {
  if (selectsOneRow(step.axis())) return true;
  return step.slice() && std::holds_alternative<SliceIndex>(*step.slice());
}

MatchShape shapeOfSelf(const Step& step) {
  const PredicateExpression* predicate = step.predicate();
  if (predicate == nullptr) return MatchShape::singleSelfTypeTest;
  if (nodeOf<ContainsAttribute>(*predicate) != nullptr) return MatchShape::singleSelfContainsAttribute;
  if (nodeOf<ContainsText>(*predicate) != nullptr) return MatchShape::singleSelfContainsText;
  return MatchShape::singleSelfPredicate;
}

}  // namespace

bool asksForPosition(const PredicateExpression& predicate) {
  const auto both = [](const auto& left, const auto& right) {
    return asksForPosition(left) || asksForPosition(right);
  };
  if (const auto* node = nodeOf<Comparison>(predicate)) return both(node->left, node->right);
  if (const auto* node = nodeOf<And>(predicate)) return both(*node->left, *node->right);
  if (const auto* node = nodeOf<Or>(predicate)) return both(*node->left, *node->right);
  if (const auto* node = nodeOf<Not>(predicate)) return asksForPosition(*node->operand);
  if (const auto* node = nodeOf<PredicateGroup>(predicate)) return asksForPosition(*node->inner);
  return false;
}

// FNV-1a
std::uint64_t hashOfName(std::string_view name) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  return hash;
}

Attribute::Attribute(std::string_view name) : name_(name), meta_{attributeKindOf(name), hashOfName(name)} {}

FunctionCall::FunctionCall(std::string_view name, Arguments arguments)
    : name_(name), arguments_(std::move(arguments)), meta_{functionKindOf(name)} {}

bool FunctionCall::operator==(const FunctionCall& other) const {
  return name_ == other.name_ && arguments_ == other.arguments_;
}

Step::Step(Axis axis, Filter filter, const std::optional<Slice>& slice)
    : axis_(axis), filter_(std::move(filter)), slice_(slice) {
  meta_.requiresContextPositions = slice_.has_value();
  if (!filter_.predicate) return;
  meta_.requiresContextPositions = meta_.requiresContextPositions || asksForPosition(*filter_.predicate);
  meta_.matchingTerms = termsOf(*filter_.predicate);
}

MatchShape computeMatchShape(bool absolute, const Steps& steps, bool allSingleElementSteps) {
  if (!absolute && steps.size() == 1 && isSelf(steps.front().axis()) && !steps.front().slice()) {
    return shapeOfSelf(steps.front());
  }
  return allSingleElementSteps ? MatchShape::allSingleElementSteps : MatchShape::general;
}

Path::Path(bool absolute, Steps steps) : absolute_(absolute), steps_(std::move(steps)) {
  for (const Step& step : steps_) {
    const Step::Meta& meta = step.meta();
    meta_.requiresContextPositions = meta_.requiresContextPositions || meta.requiresContextPositions;
    meta_.allSingleElementSteps = meta_.allSingleElementSteps && isSingleElement(step);
    meta_.matchingTerms.insert(meta.matchingTerms.begin(), meta.matchingTerms.end());
  }
  meta_.matchShape = computeMatchShape(absolute_, steps_, meta_.allSingleElementSteps);
}

}  // namespace vell::outline_path

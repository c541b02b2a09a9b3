// The facts of `meta`, worked out as the nodes are built.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "outline_path/expression.h"

namespace vell::outline_path {
namespace {

template <typename Block>
std::uint64_t blockAt(const char* begin) {
  Block block;
  std::memcpy(&block, begin, sizeof block);
  return block;
}

template <typename T>
const T* nodeOf(const PredicateExpression& predicate) {
  return std::get_if<T>(&predicate.node);
}

bool asksForPosition(const ValueExpression& value);

bool asksForPosition(const FunctionCall& call) {
  const FunctionKind kind = call.meta().kind;
  if (kind == FunctionKind::position || kind == FunctionKind::last) return true;
  const auto& arguments = call.arguments();
  return std::any_of(arguments.begin(), arguments.end(),
                     [](const ValueExpression& argument) { return asksForPosition(argument); });
}

// A path argument has contexts of its own: the positions asked for in it are not those of this step.
bool asksForPosition(const ValueExpression& value) {
  const auto both = [](const auto& node) {
    return asksForPosition(*node.left) || asksForPosition(*node.right);
  };
  if (const auto* call = std::get_if<FunctionCall>(&value.node)) return asksForPosition(*call);
  if (const auto* node = std::get_if<Additive>(&value.node)) return both(*node);
  if (const auto* node = std::get_if<Multiplicative>(&value.node)) return both(*node);
  if (const auto* node = std::get_if<Unary>(&value.node)) return asksForPosition(*node->operand);
  if (const auto* node = std::get_if<ValueGroup>(&value.node)) return asksForPosition(*node->inner);
  return false;
}

bool isTextOfRow(const ValueExpression& value) {
  const auto* attribute = std::get_if<Attribute>(&value.node);
  return attribute != nullptr && attribute->meta().kind == AttributeKind::text;
}

/// What a predicate asks for; of the text only perhaps.
struct Asked {
  bool position = false;
  bool text = false;
};

const PredicateExpression* lastOf(const PredicateExpression& predicate) {
  if (const auto* node = nodeOf<And>(predicate)) return &*node->right;
  if (const auto* node = nodeOf<Or>(predicate)) return &*node->right;
  if (const auto* node = nodeOf<Not>(predicate)) return &*node->operand;
  if (const auto* node = nodeOf<PredicateGroup>(predicate)) return &*node->inner;
  return nullptr;
}

// A loop along the last parts: chains are long more often than their operands are.
void noteAsked(const PredicateExpression& predicate, Asked& asked) {
  const PredicateExpression* part = &predicate;
  while (const PredicateExpression* const last = lastOf(*part)) {
    if (const auto* node = nodeOf<And>(*part)) noteAsked(*node->left, asked);
    if (const auto* node = nodeOf<Or>(*part)) noteAsked(*node->left, asked);
    part = last;
  }
  if (const auto* node = nodeOf<Comparison>(*part)) {
    asked.position = asked.position || asksForPosition(node->left) || asksForPosition(node->right);
    asked.text = asked.text || isTextOfRow(node->left);
  }
  asked.text = asked.text || nodeOf<ContainsText>(*part) != nullptr;
}

using Terms = std::vector<MatchTerm>;

Terms setOf(std::string_view text) {
  if (text.empty()) return {};
  return {MatchTerm{std::string(text)}};
}

Terms unite(Terms left, const Terms& right) {
  if (right.empty()) return left;
  Terms all;
  std::set_union(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(all));
  return all;
}

Terms common(const Terms& left, const Terms& right) {
  Terms both;
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(both));
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

Terms termsOf(const Comparison& comparison) {
  if (!isTextOfRow(comparison.left) || !impliesContaining(comparison.relation)) return {};
  // An unquoted word or a number may be compared as something else than its text.
  const auto* literal = std::get_if<Literal>(&comparison.right.node);
  return literal == nullptr ? Terms{} : setOf(literal->text);
}

Terms termsOf(const PredicateExpression& predicate) {
  if (const auto* node = nodeOf<ContainsText>(predicate)) return setOf(node->text);
  if (const auto* node = nodeOf<Comparison>(predicate)) return termsOf(*node);
  if (const auto* node = nodeOf<And>(predicate)) return unite(termsOf(*node->left), termsOf(*node->right));
  if (const auto* node = nodeOf<Or>(predicate)) return common(termsOf(*node->left), termsOf(*node->right));
  if (const auto* node = nodeOf<PredicateGroup>(predicate)) return termsOf(*node->inner);
  return {};
}

[[gnu::noinline]] MatchTerms setOfTerms(const PredicateExpression& predicate) {
  return MatchTerms(termsOf(predicate));
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

/// The union of the terms of all steps.
[[gnu::noinline]] MatchTerms termsOf(const Steps& steps) {
  Terms all;
  for (const Step& step : steps)
    all.insert(all.end(), step.meta().matchingTerms.begin(), step.meta().matchingTerms.end());
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return MatchTerms(std::move(all));
}

}  // namespace

std::uint64_t hashOfName(std::string_view name) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
  std::uint64_t hash = name.size();
  const auto mix = [&hash](std::uint64_t block) {
    hash = (hash ^ block) * kFactor;
    hash ^= hash >> 32;
  };
  for (; name.size() > 8; name.remove_prefix(8)) mix(blockAt<std::uint64_t>(name.data()));
  if (name.size() >= 4) {
    // The halves overlap.
    const std::uint64_t low = blockAt<std::uint32_t>(name.data());
    mix(low << 32 | blockAt<std::uint32_t>(name.data() + name.size() - 4));
  } else {
    for (const char c : name) mix(static_cast<unsigned char>(c));
  }
  return hash;
}

Attribute::Attribute(std::string_view name) : name_(name), meta_{attributeKindOf(name), hashOfName(name)} {}

FunctionCall::FunctionCall(std::string_view name, Arguments arguments)
    : name_(name), arguments_(std::move(arguments)), meta_{functionKindOf(name)} {}

bool FunctionCall::operator==(const FunctionCall& other) const {
  return name_ == other.name_ && arguments_ == other.arguments_;
}

void Step::noteFactsOf(const PredicateExpression& predicate) {
  Asked asked;
  noteAsked(predicate, asked);
  meta_.requiresContextPositions = meta_.requiresContextPositions || asked.position;
  if (asked.text) meta_.matchingTerms = setOfTerms(predicate);
}

MatchShape computeMatchShape(bool absolute, const Steps& steps, bool allSingleElementSteps) {
  if (!absolute && steps.size() == 1 && isSelf(steps.front().axis()) && !steps.front().slice()) {
    return shapeOfSelf(steps.front());
  }
  return allSingleElementSteps ? MatchShape::allSingleElementSteps : MatchShape::general;
}

Path::Path(bool absolute, Steps steps) : absolute_(absolute), steps_(std::move(steps)) {
  bool hasTerms = false;
  for (const Step& step : steps_) {
    meta_.requiresContextPositions = meta_.requiresContextPositions || step.meta().requiresContextPositions;
    meta_.allSingleElementSteps = meta_.allSingleElementSteps && isSingleElement(step);
    hasTerms = hasTerms || !step.meta().matchingTerms.empty();
  }
  if (hasTerms) meta_.matchingTerms = termsOf(steps_);
  meta_.matchShape = computeMatchShape(absolute_, steps_, meta_.allSingleElementSteps);
}

}  // namespace vell::outline_path

#include "outline_path/tree_of.h"

#include <charconv>

#include "outline_path/in_place.h"
#include "outline_path/numbers.h"
#include "outline_path/strings.h"

namespace vell::outline_path {
namespace {

std::optional<std::int64_t> integerIn(std::string_view digits) {
  std::int64_t integer = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
  return error == std::errc() ? std::optional(integer) : std::nullopt;
}

Slice sliceOf(std::string_view brackets) {
  const std::string_view bounds = brackets.substr(1, brackets.size() - 2);
  const std::size_t colon = bounds.find(':');
  if (colon == std::string_view::npos) return SliceIndex{*integerIn(bounds)};
  return SliceRange{integerIn(bounds.substr(0, colon)), integerIn(bounds.substr(colon + 1))};
}

Relation relationOf(const Draft& draft) {
  Relation relation{static_cast<RelationOp>(draft.entry), std::nullopt};
  if (draft.detail == 0) return relation;
  relation.modifier = RelationModifier{static_cast<RelationModifierType>(draft.detail - 1), std::nullopt};
  if (draft.localeAware) relation.modifier->list = true;
  return relation;
}

/// A node of this kind, in place.
template <typename Alternative, typename Expression, typename Make>
Expression made(Make make) {
  return Expression{typename Expression::Node(std::in_place_type<Alternative>, InPlace<Make>{make})};
}

template <typename Expression>
Box<Expression> later() {
  return Box<Expression>(typename Box<Expression>::ForLater());
}

// What has no parts is made apart, so that what nests takes less of the stack.

[[gnu::noinline]] ContainsText textTestOf(const Draft& draft) {
  const std::string_view text = draft.text();
  return {draft.kind == Draft::Kind::literal ? decodeString(text) : std::string(text)};
}

[[gnu::noinline]] ValueExpression leafOf(const Draft& draft) {
  using Kind = Draft::Kind;
  using Value = ValueExpression;
  switch (draft.kind) {
    case Kind::boolean:
      return {draft.text() == kTrue};
    case Kind::number:
      return {numberOf(draft.text())};
    case Kind::attribute:
      return made<Attribute, Value>([&] { return Attribute(draft.text()); });
    case Kind::variable:
      return made<Variable, Value>([&] { return Variable{std::string(draft.text())}; });
    case Kind::literal:
      return made<Literal, Value>([&] { return Literal{decodeString(draft.text())}; });
    case Kind::unquoted:
      return made<Unquoted, Value>([&] { return Unquoted{std::string(draft.text())}; });
    default:
      return {Null{}};
  }
}

/// Makes the tree of drafts. Where it can be it is made in loops, however deep it is: the last part of an
/// expression after the expression, and the paths that are arguments after all around them.
class TreeMaker {
 public:
  template <typename Expression>
  Expression tree(const Draft& draft) {
    Expression root = whole<Expression>(draft);
    while (!paths_.empty()) {
      const auto [draftOfPath, place] = paths_.back();
      paths_.pop_back();
      *place = boxOf<PathExpression>(*draftOfPath);
    }
    return root;
  }

 private:
  struct PathForLater {
    const Draft* draft;
    Box<PathExpression>* place;
  };

  /// What `begin` makes of the draft, and then its last part, of that the last, and so on.
  template <typename Expression>
  Expression whole(const Draft& draft) {
    Expression first = begin(draft, static_cast<Expression*>(nullptr));
    const Draft* part = &draft;
    for (auto* last = lastPart(first); last != nullptr; last = lastPart(**last)) {
      part = part->right;
      *last =
          Box<Expression>(InPlace{[this, part] { return begin(*part, static_cast<Expression*>(nullptr)); }});
    }
    return first;
  }

  template <typename Expression>
  Box<Expression> boxOf(const Draft& draft) {
    return Box<Expression>(InPlace{[this, &draft] { return whole<Expression>(draft); }});
  }

  /// The list of drafts that begins with `first`, each made in its place.
  template <typename List, typename Make>
  static List listOf(const Draft* first, Make make) {
    std::size_t count = 0;
    for (const Draft* draft = first; draft != nullptr; draft = draft->next) ++count;
    List list;
    list.reserve(count);
    for (const Draft* draft = first; draft != nullptr; draft = draft->next) {
      if (list.size() == list.capacity()) __builtin_unreachable();
      list.emplace_back(InPlace{[draft, make] { return make(*draft); }});
    }
    return list;
  }

  FunctionCall callOf(const Draft& draft) {
    auto arguments = listOf<FunctionCall::Arguments>(
        draft.left, [this](const Draft& argument) { return whole<ValueExpression>(argument); });
    const Draft* argument = draft.left;
    for (ValueExpression& value : arguments) {
      if (auto* path = std::get_if<PathArgument>(&value.node))
        paths_.push_back({argument->right, &path->path});
      argument = argument->next;
    }
    return {draft.text(), std::move(arguments)};
  }

  ValueExpression begin(const Draft& draft, ValueExpression*) {
    using Kind = Draft::Kind;
    using Value = ValueExpression;
    switch (draft.kind) {
      case Kind::call:
        return made<FunctionCall, Value>([&] { return callOf(draft); });
      case Kind::unary:
        return {Unary{static_cast<UnaryOp>(draft.entry), later<Value>()}};
      case Kind::additive:
        return {Additive{boxOf<Value>(*draft.left), static_cast<AdditiveOp>(draft.entry), later<Value>()}};
      case Kind::multiplicative:
        return {Multiplicative{boxOf<Value>(*draft.left), static_cast<MultiplicativeOp>(draft.entry),
                               later<Value>()}};
      case Kind::valueGroup:
        return {ValueGroup{later<Value>()}};
      case Kind::pathArgument:
        return {PathArgument{later<PathExpression>()}};
      default:
        return leafOf(draft);
    }
  }

  PredicateExpression begin(const Draft& draft, PredicateExpression*) {
    using Kind = Draft::Kind;
    using Predicate = PredicateExpression;
    switch (draft.kind) {
      case Kind::attribute:
        return made<ContainsAttribute, Predicate>([&] { return ContainsAttribute{Attribute(draft.text())}; });
      case Kind::comparison:
        return made<Comparison, Predicate>([&] {
          return Comparison{whole<ValueExpression>(*draft.left), relationOf(draft),
                            whole<ValueExpression>(*draft.right)};
        });
      case Kind::orOf:
        return {Or{boxOf<Predicate>(*draft.left), later<Predicate>()}};
      case Kind::andOf:
        return {And{boxOf<Predicate>(*draft.left), later<Predicate>()}};
      case Kind::notOf:
        return {Not{later<Predicate>()}};
      case Kind::predicateGroup:
        return {PredicateGroup{later<Predicate>()}};
      default:
        return made<ContainsText, Predicate>([&] { return textTestOf(draft); });
    }
  }

  Step stepWith(const Draft& draft, const std::optional<Slice>& slice) {
    const auto axis = static_cast<Axis>(draft.entry);
    const std::optional<TypeTest> typeTest =
        draft.detail == 0 ? std::nullopt : std::optional(static_cast<TypeTest>(draft.detail - 1));
    if (draft.left == nullptr) return {axis, {typeTest.value_or(TypeTest::any), std::nullopt}, slice};
    return {axis, typeTest, InPlace{[&] { return whole<PredicateExpression>(*draft.left); }}, slice};
  }

  [[gnu::noinline]] Step stepWithSlice(const Draft& draft) { return stepWith(draft, sliceOf(draft.text())); }

  Step stepOf(const Draft& draft) {
    return draft.length == 0 ? stepWith(draft, std::nullopt) : stepWithSlice(draft);
  }

  PathExpression begin(const Draft& draft, PathExpression*) {
    using Kind = Draft::Kind;
    switch (draft.kind) {
      case Kind::unionOf:
        return {Union{boxOf<PathExpression>(*draft.left), later<PathExpression>()}};
      case Kind::except:
        return {Except{boxOf<PathExpression>(*draft.left), later<PathExpression>()}};
      case Kind::intersect:
        return {Intersect{boxOf<PathExpression>(*draft.left), later<PathExpression>()}};
      case Kind::pathGroup:
        return {PathGroup{later<PathExpression>()}};
      default:
        return made<Path, PathExpression>([&] {
          return Path(draft.entry != 0,
                      listOf<Steps>(draft.left, [this](const Draft& step) { return stepOf(step); }));
        });
    }
  }

  /// Paths that are arguments, and the empty boxes that they belong into.
  std::vector<PathForLater, NodeAllocator<PathForLater>> paths_;
};

}  // namespace

ValueExpression valueOf(const Draft& draft) { return TreeMaker().tree<ValueExpression>(draft); }
PathExpression pathOf(const Draft& draft) { return TreeMaker().tree<PathExpression>(draft); }

}  // namespace vell::outline_path

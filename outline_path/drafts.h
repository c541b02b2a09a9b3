#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "outline_path/pile.h"

namespace vell::outline_path {

/// What the rules note of a construct that they have matched. It costs next to nothing to make and nothing to
/// drop, so that alternatives may fail; the tree is made of it once the text has been read.
struct Draft {
  enum class Kind : std::uint8_t {
    null,
    boolean,
    number,
    attribute,
    variable,
    literal,
    unquoted,
    call,
    unary,
    additive,
    multiplicative,
    valueGroup,
    pathArgument,
    comparison,
    orOf,
    andOf,
    notOf,
    predicateGroup,
    step,
    path,
    intersect,
    except,
    unionOf,
    pathGroup,
  };

  Kind kind;
  /// The operator, relation or axis, or whether the path is absolute.
  std::uint8_t entry;
  /// A step's type test, as its number plus one; a relation's modifier letter, in the same way.
  std::uint8_t detail;
  bool localeAware;
  /// The name or the text as written; a step's slice.
  const char* begin;
  std::size_t length;
  /// The operands, or a step's predicate; of a path or call `left` is the first of its steps or arguments.
  Draft* left;
  Draft* right;
  /// The next step or argument.
  Draft* next;
  /// The number of steps or arguments.
  std::size_t count;

  std::string_view text() const { return {begin, length}; }
};

/// The drafts of one parse.
class Drafts {
 public:
  Draft* add(Draft::Kind kind, std::string_view text = {}, Draft* left = nullptr, Draft* right = nullptr) {
    Draft* draft = drafts_.add();
    draft->kind = kind;
    draft->entry = 0;
    draft->detail = 0;
    draft->localeAware = false;
    draft->begin = text.data();
    draft->length = text.size();
    draft->left = left;
    draft->right = right;
    draft->next = nullptr;
    draft->count = 0;
    return draft;
  }

 private:
  Pile<Draft, 256> drafts_;
};

}  // namespace vell::outline_path

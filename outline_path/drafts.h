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
  union {
    /// The name or the text as written; a step's slice.
    const char* begin;
    /// The right operand, or the only one.
    Draft* right;
  };
  std::size_t length;
  /// The left operand, or a step's predicate; the first of a path's steps or of a call's arguments.
  Draft* left;
  /// The next step or argument.
  Draft* next;

  std::string_view text() const { return {begin, length}; }
  void setText(std::string_view text) {
    begin = text.data();
    length = text.size();
  }
  /// One more behind the parts that begin with `left`, of which `last`, null as yet, is the last.
  void appendPart(Draft* part, Draft*& last) {
    part->next = nullptr;
    (last == nullptr ? left : last->next) = part;
    last = part;
  }
};

/// The drafts of one parse.
class Drafts {
 public:
  /// Of a text, and perhaps parts.
  Draft* addText(Draft::Kind kind, std::string_view text, Draft* left = nullptr) {
    Draft* draft = add(kind, left);
    draft->setText(text);
    return draft;
  }
  /// Without any part or text yet.
  Draft* addEmpty(Draft::Kind kind, std::uint8_t entry) {
    Draft* draft = add(kind, nullptr);
    draft->entry = entry;
    draft->right = nullptr;
    draft->length = 0;
    draft->next = nullptr;
    return draft;
  }
  /// Of operands.
  Draft* addParts(Draft::Kind kind, Draft* left, Draft* right) {
    Draft* draft = add(kind, left);
    draft->right = right;
    return draft;
  }

 private:
  Draft* add(Draft::Kind kind, Draft* left) {
    Draft* draft = drafts_.add();
    draft->kind = kind;
    draft->entry = 0;
    draft->detail = 0;
    draft->localeAware = false;
    draft->left = left;
    return draft;
  }

  Pile<Draft, 256> drafts_;
};

}  // namespace vell::outline_path

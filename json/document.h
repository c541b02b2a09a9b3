#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/index.h"
#include "json/text.h"

namespace vell::json {

enum class Kind { object, array, string, number, boolean, null };

class Document;

/// One value of a document; cheap to copy, valid while its document lives.
class Node {
 public:
  Kind kind() const;
  /// An object's member of that name, the last one where the name is repeated.
  std::optional<Node> find(std::string_view key) const;
  /// An array's elements in order; empty for other kinds.
  std::vector<Node> elements() const;
  /// A string's meaning in UTF-8 (U+FFFD for a lone surrogate); none for other kinds.
  std::optional<std::string> string() const;
  /// A number written without fraction or exponent that fits; none otherwise.
  std::optional<std::int64_t> integer() const;

 private:
  friend class Document;
  friend class Reprinter;
  Node(const Index& index, std::uint32_t token) : index_(&index), token_(token) {}

  const Index* index_;
  std::uint32_t token_;
};

/// A JSON text and the index of its tokens: no tree is built, values stay slices of the text.
class Document {
 public:
  /// Checks the whole text. Throws ParseError.
  explicit Document(Text text) : index_(std::move(text)) {}
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  Node root() const { return {index_, 0}; }
  std::string_view text() const { return index_.text(); }

 private:
  Index index_;
};

}  // namespace vell::json

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/index.h"
#include "json/text.h"

/// What JSON means to every reader and writer:
/// - Numbers. One without fraction or exponent that fits 64 bits is an exact integer. Each number is also the
///   nearest double; one beyond the range of doubles is valid JSON without a value. Rewriting a text keeps
///   its numbers as they are spelled; a double is written so that reading it gives the same double.
/// - Strings are UTF-8. `\u0000` is a character like any other, a NUL byte is an error wherever it stands.
///   Half a surrogate pair (`\ud800` alone) reads as U+FFFD; rewriting a text keeps its escape.
/// - Of members with the same key the last one counts.
/// - A text nested deeper than `maxDepth` is refused.
namespace vell::json {

enum class Kind { object, array, string, number, boolean, null };

class Document;
struct Member;

/// One value of a document; cheap to copy, valid while its document lives.
class Node {
 public:
  Kind kind() const;
  /// Bytes from the start of the text to the value.
  std::size_t offset() const { return index_->begin(entry_); }

  /// An object's member of that name, the last one where the name is repeated.
  std::optional<Node> find(std::string_view key) const;
  /// An object's members in the order of the text, repeated keys included; empty for other kinds.
  std::vector<Member> members() const;
  /// An array's elements in order; empty for other kinds.
  std::vector<Node> elements() const;

  /// None for other kinds.
  std::optional<std::string> string() const;
  std::optional<bool> boolean() const;
  /// A number without fraction and exponent that fits 64 bits; none otherwise.
  std::optional<std::int64_t> integer() const;
  /// Any number within the range of doubles; none otherwise.
  std::optional<double> number() const;

 private:
  friend class Document;
  friend class Reprinter;
  Node(const Index& index, std::uint32_t entry) : index_(&index), entry_(entry) {}

  const Index* index_;
  std::uint32_t entry_;
};

/// A member of an object.
struct Member {
  std::string key;
  Node value;
  /// Bytes from the start of the text to the key.
  std::size_t offset = 0;
};

/// A JSON text and its index: no tree is built, values stay slices of the text.
class Document {
 public:
  /// Checks the whole text. Throws ParseError.
  explicit Document(Text text) : index_(std::move(text)) {}
  explicit Document(std::string_view text) : Document(Text(text)) {}
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  Node root() const { return {index_, 0}; }
  std::string_view text() const { return index_.text(); }

 private:
  Index index_;
};

}  // namespace vell::json

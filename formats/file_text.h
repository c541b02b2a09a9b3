#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vell::formats {

/// The text of a file in pieces: stretches of the text that it was read from, and what is new between them.
/// So a large file is not put together in memory, which saves a third of the time until it is on disk.
class FileText {
 public:
  /// All of it is new.
  explicit FileText(std::string text);
  /// Nothing yet; stretches will be those of `source`.
  explicit FileText(std::shared_ptr<const std::string> source) : source_(std::move(source)) {}

  /// Appends a stretch of the source.
  void copy(std::size_t begin, std::size_t end);
  void append(std::string_view text);

  /// What follows one another. Valid for as long as the text lives and is not changed.
  std::vector<std::string_view> pieces() const;
  bool startsWith(std::string_view text) const {
    return !pieces_.empty() && view(pieces_.front()).starts_with(text);
  }
  std::string string() const;

 private:
  struct Piece {
    bool isCopied;
    std::size_t begin;
    std::size_t end;
  };

  std::string_view view(const Piece& piece) const {
    return std::string_view(piece.isCopied ? *source_ : own_).substr(piece.begin, piece.end - piece.begin);
  }

  std::shared_ptr<const std::string> source_;
  std::string own_;
  std::vector<Piece> pieces_;
};

}  // namespace vell::formats

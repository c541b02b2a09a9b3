#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/inline_pieces.h"

namespace vell::formats {

/// Inline source in the making. It knows which of its bytes are text, so that it can escape those that would
/// be read as markup, and only those.
class Draft {
 public:
  /// Appends markup as it is written.
  void addMarkup(std::string_view source);
  /// Appends text that must be read as it stands.
  void addText(std::string_view text);
  /// Appends a piece of a source as it is written there.
  void addPiece(std::string_view source, const Piece& piece);
  void add(const Draft& other);

  const std::string& source() const { return source_; }

  /// Escapes text that is read as markup, until the whole reads as `text`. False if it never does.
  bool settle(const Text& text, LineFeeds lineFeeds);

 private:
  void add(std::string_view source, bool isText);
  void escapeEnds();
  bool endsInTrailer() const;
  std::vector<std::size_t> findMisread(const std::vector<Piece>& pieces) const;
  std::vector<std::size_t> findText(std::string_view characters) const;
  void addMarks(std::vector<std::size_t>& places, const Piece& piece) const;
  void escape(const std::vector<std::size_t>& places);

  std::string source_;
  std::vector<bool> isText_;  ///< of each byte
};

}  // namespace vell::formats

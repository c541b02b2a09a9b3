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

  /// Escapes text that is read as markup, until the whole reads as `text` and a line can end with it. False
  /// if it never does.
  bool settle(const Text& text, LineFeeds lineFeeds);

 private:
  enum class Byte : char { markup, text, keptText };
  using Places = std::vector<std::size_t>;

  bool isText(std::size_t at) const { return bytes_[at] != Byte::markup; }
  void append(std::string_view source, Byte kind);
  void escapeEnds();
  bool endsInTrailer() const;
  bool readsAs(const Text& text, const std::vector<Piece>& pieces) const;
  Places findMisread(const std::vector<Piece>& pieces) const;
  bool hasMarkup(const Piece& piece) const;
  void addMarks(Places& places, const Piece& open, const Piece& close) const;
  Places textMarks(const Piece& piece) const;
  template <class Fits>
  Places findText(std::string_view characters, Fits&& fits) const;
  Places findSuspects() const;
  Places findBlanksAtBreaks() const;
  void escape(const Places& places);

  std::string source_;
  std::vector<Byte> bytes_;  ///< what each byte of it is
};

}  // namespace vell::formats

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/inline_markdown.h"

namespace vell::formats {

/// A stretch of inline source and what it means.
struct Piece {
  enum class Kind {
    text,     ///< says what its bytes are
    unit,     ///< likewise; an image or html, in which nothing else is markup
    decoded,  ///< says one character in another way: an escape, a reference, a line break
    open,     ///< begins a style
    close     ///< ends the style that was begun last
  };

  Kind kind = Kind::text;
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string decoded;
  Attributes style;  ///< of an open piece
};

/// The pieces of a source, in order; each of its bytes belongs to one.
std::vector<Piece> readPieces(std::string_view source, LineFeeds lineFeeds);

/// What a piece says; nothing where it opens or closes a style.
std::string_view textOf(std::string_view source, const Piece& piece);
/// What all of them say.
Text textOf(std::string_view source, const std::vector<Piece>& pieces);

}  // namespace vell::formats

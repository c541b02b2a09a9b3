#pragma once

#include <string_view>
#include <vector>

#include "formats/inline_pieces.h"

namespace vell::formats {

/// What a character is to the marks beside it. Both ends of a text are blank.
enum class CharacterClass { blank, punctuation, other };
CharacterClass classBefore(std::string_view text, std::size_t at);
CharacterClass classAt(std::string_view text, std::size_t at);

/// Whether marks can begin or end a style, by what stands on their two sides.
struct Flanks {
  bool canOpen;
  bool canClose;
};
Flanks flanksOf(char mark, CharacterClass before, CharacterClass after);

/// Pairs the runs of marks in a text, by the rules that CommonMark has for emphasis. "~~" and "==" are marks
/// as they stand; longer and shorter runs of these are text.
class Delimiters {
 public:
  std::size_t size() const { return runs_.size(); }
  /// Takes the run at `at`, which is that long.
  void add(std::string_view source, std::size_t at, std::size_t length);
  /// Forgets the runs from that one on: they are text.
  void drop(std::size_t from) { runs_.resize(from); }
  /// Pairs the runs from that one on with one another, appends what they open and close, and forgets them.
  void pair(std::size_t from, std::vector<Piece>& pieces);

 private:
  struct Run {
    char mark;
    std::size_t begin;  ///< of what is not paired yet
    std::size_t end;
    std::size_t length;  ///< of the whole run
    bool canOpen;
    bool canClose;
  };

  static bool match(const Run& opener, const Run& closer);

  std::vector<Run> runs_;
};

}  // namespace vell::formats

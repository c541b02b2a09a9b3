#pragma once

#include <random>
#include <string>
#include <string_view>

#include "formats/format.h"

namespace vell::formats {

/// What of a generated outline a format has to hold.
struct Holds {
  bool styles = true;  ///< types, runs, attributes, ids, front matter
  bool times = true;
  bool controls = true;  ///< control characters but tabs
  bool lineEnds = true;  ///< line feeds and carriage returns
};

/// Fills an outline with rows whose content is picked to be misread.
class OutlineGenerator {
 public:
  OutlineGenerator(unsigned seed, Holds holds) : random_(seed), holds_(holds) {}

  void fill(Outline& outline, std::size_t rows);
  std::string text();
  Text styledText();
  Attributes attributes(std::string_view first);
  std::size_t below(std::size_t limit) { return random_() % limit; }

 private:
  bool oneIn(std::size_t count) { return below(count) == 0; }
  Timestamp time();
  Row* row(Outline& outline);

  std::mt19937 random_;
  Holds holds_;
};

/// Everything that the format has to hold, one line a row, for comparing.
std::string dump(const Outline& outline, Holds holds);

std::string writeAll(std::string_view format, const Outline& outline, bool rowsOnly = false);
void readAs(std::string_view format, std::string_view text, Outline& outline);

}  // namespace vell::formats

#pragma once

#include <string>
#include <string_view>

namespace vell::text {

/// Letters without their case: ASCII, Latin, Greek and Cyrillic; what has no case stays.
std::string foldCase(std::string_view text);
/// Latin letters without their accents; combining accents are left out.
std::string foldAccents(std::string_view text);

/// Looks for one text, whatever its case, in many.
class TextSearch {
 public:
  explicit TextSearch(std::string_view wanted);
  /// True where `text` contains what is looked for; "" is contained in every text.
  bool isIn(std::string_view text) const;

 private:
  bool isInAscii(std::string_view text) const;

  std::string folded_;
  bool isAscii_;
};

}  // namespace vell::text

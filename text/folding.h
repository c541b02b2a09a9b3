#pragma once

#include <string>
#include <string_view>

namespace vell::text {

/// The text without its case, in composed form (NFC), so that "É" and "e" with an accent behind it are the
/// same. A letter becomes one letter (Unicode's simple folding): "ß" is not "ss". Bytes that are no UTF-8
/// become U+FFFD.
std::string foldCase(std::string_view text);
/// Letters without their accents, in composed form.
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

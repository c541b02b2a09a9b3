#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How shells read and write the words of a command line.
namespace vell::cli {

enum class Shell { bash, zsh, fish };

/// The shells by their names, in the order of `Shell`.
inline constexpr std::string_view shellNames[] = {"bash", "zsh", "fish"};

/// A command line up to the cursor.
struct TypedLine {
  /// Without their quotes. The last one is being typed; it is empty behind a blank.
  std::vector<std::string> words;
  /// The quote that is open at the end; 0 where none is.
  char openQuote = 0;
};

TypedLine splitLine(std::string_view line, Shell shell);

/// The text as bash reads it as it stands, behind a quote where one is open. None where bash has no way of
/// writing it there: "!" in double quotes.
std::optional<std::string> quotedForBash(std::string_view text, char openQuote);

}  // namespace vell::cli

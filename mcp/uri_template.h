#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vell::mcp {

/// A URI with `{name}` variables, each standing for (part of) one path segment.
class UriTemplate {
 public:
  using Variables = std::map<std::string, std::string>;

  /// Throws std::invalid_argument for a brace that is not part of a `{name}`.
  explicit UriTemplate(std::string text);

  const std::string& text() const { return text_; }
  /// The variables' values, percent-decoded once; a variable that stands for nothing is left out.
  /// None where the URI does not match, also for a value with a malformed escape.
  std::optional<Variables> match(std::string_view uri) const;

 private:
  struct Piece {
    std::string variable;
    std::string literalBehind;
  };

  std::string text_;
  std::string literalBefore_;
  std::vector<Piece> pieces_;
};

}  // namespace vell::mcp

#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace vell::outline_path {

/// Where the round brackets of a text end. No part of it is read twice, however often it is asked about.
class Brackets {
 public:
  static constexpr std::size_t kUnpaired = std::string_view::npos;

  explicit Brackets(std::string_view text) : text_(text) {}

  /// The offset behind the bracket that closes the one at `open`, `kUnpaired` where there is none.
  std::size_t behind(std::size_t open) {
    if (behind_ == nullptr) prepare();
    if (behind_[open] == 0) pairFrom(open);
    return behind_[open];
  }

 private:
  void prepare();
  void pairFrom(std::size_t open);

  std::string_view text_;
  /// For each opening bracket that was read what `behind` returns; 0 for whatever else.
  std::size_t* behind_ = nullptr;
  std::array<std::size_t, 1024> few_;
  std::vector<std::size_t> many_;
};

/// The offset behind the string that begins at `quote`, or the end of `text` where it is not closed.
std::size_t behindString(std::string_view text, std::size_t quote);

}  // namespace vell::outline_path

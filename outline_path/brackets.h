#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
    if (!prepared_) prepare();
    return text_.size() <= few_.size() ? behind(few_.data(), open) : behind(many_.data(), open);
  }

 private:
  // As nodes of the tree do, tables touch as little memory as they can: offsets in short texts are short.
  using Short = std::uint16_t;

  void prepare();
  template <typename Offset>
  std::size_t behind(Offset* table, std::size_t open) {
    if (table[open] == 0) pairFrom(table, open);
    return table[open] == static_cast<Offset>(kUnpaired) ? kUnpaired : table[open];
  }
  template <typename Offset>
  void pairFrom(Offset* table, std::size_t open);

  std::string_view text_;
  bool prepared_ = false;
  /// For each opening bracket that was read what `behind` returns; 0 for whatever else.
  std::array<Short, 1024> few_;
  std::vector<std::size_t> many_;
};

/// The offset behind the string that begins at `quote`, or the end of `text` where it is not closed.
std::size_t behindString(std::string_view text, std::size_t quote);

}  // namespace vell::outline_path

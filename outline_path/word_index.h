#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vell::outline_path {

/// Finds words of a table by a hash without collisions, worked out at compile time.
template <std::size_t count>
class WordIndex {
 public:
  constexpr explicit WordIndex(const std::array<std::string_view, count>& words) : words_(words) {
    while (!isFilled()) ++factor_;
  }

  /// The index of `word` in the table, or the number of words.
  std::size_t find(std::string_view word) const {
    if (word.empty()) return count;
    const std::size_t index = slots_[slotOf(word)];
    return index < count && isSame(words_[index], word) ? index : count;
  }

 private:
  static constexpr std::size_t kSlots = 128;

  constexpr std::size_t slotOf(std::string_view word) const {
    const auto at = [word](std::size_t i) { return static_cast<unsigned char>(word[i]); };
    return ((at(0) * std::size_t{8} + at(word.size() / 2)) * factor_ + word.size() * 31) % kSlots;
  }

  /// Words are so short that calling the library to compare them takes longer.
  static bool isSame(std::string_view left, std::string_view right) {
    const std::size_t size = left.size();
    if (size != right.size()) return false;
    // The first four bytes and the last four, which may overlap.
    if (size >= 4 && size <= 8)
      return fourAt(left, 0) == fourAt(right, 0) && fourAt(left, size - 4) == fourAt(right, size - 4);
    for (std::size_t i = 0; i < size; ++i) {
      if (left[i] != right[i]) return false;
    }
    return true;
  }
  static std::uint32_t fourAt(std::string_view word, std::size_t offset) {
    std::uint32_t four = 0;
    std::memcpy(&four, word.data() + offset, sizeof four);
    return four;
  }

  constexpr bool isFilled() {
    slots_.fill(count);
    for (std::size_t i = 0; i < count; ++i) {
      auto& slot = slots_[slotOf(words_[i])];
      if (slot != count) return false;
      slot = static_cast<std::uint8_t>(i);
    }
    return true;
  }

  std::array<std::string_view, count> words_;
  std::array<std::uint8_t, kSlots> slots_{};
  std::size_t factor_ = 1;
};

}  // namespace vell::outline_path

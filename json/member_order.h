#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "json/index.h"

namespace vell::json {

/// Puts the members of objects in the byte order of their keys' meaning.
class MemberOrder {
 public:
  explicit MemberOrder(const Index& index) : index_(index) {}

  /// Appends the keys of an object's members in their order; of repeated keys only the last.
  void append(std::uint32_t object, std::vector<std::uint32_t>& keys);

 private:
  static constexpr std::size_t mostKnown = 15;

  /// The places that the members of objects with the same keys had before they were put in order.
  struct Order {
    std::uint64_t hash = 0;
    std::uint8_t count = 0;
    std::array<std::uint8_t, mostKnown> places{};
  };

  bool gather(std::uint32_t object);
  bool appendAsKnown(std::vector<std::uint32_t>& keys) const;
  bool before(std::size_t a, std::size_t b) const;
  void remember(const std::uint32_t* sorted);

  const Index& index_;
  // The members of the object at hand, where they are few and their keys plain.
  std::size_t count_ = 0;
  std::uint64_t hash_ = 0;
  std::array<std::uint64_t, mostKnown> prefixes_;
  std::array<std::uint32_t, mostKnown> tokens_;
  std::array<Order, 64> known_;
};

}  // namespace vell::json

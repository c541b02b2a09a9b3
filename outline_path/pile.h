#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace vell::outline_path {

/// Items that stay where they are as more are added. The first `few` need no memory of their own.
template <typename Item, std::size_t few>
class Pile {
  static_assert(std::is_trivially_default_constructible_v<Item>, "The room for items is not cleared.");

 public:
  Pile() = default;
  Pile(const Pile&) = delete;
  Pile& operator=(const Pile&) = delete;

  /// A new item, to be filled in. Assign its members one by one: a copy of what was only just put together
  /// has to wait for it.
  Item* add() {
    if (next_ == end_) grow();
    return next_++;
  }

  std::size_t size() const { return before_ + static_cast<std::size_t>(next_ - begin_); }

  /// Calls `visit(item)` for each, in order.
  template <typename Visit>
  void each(const Visit& visit) const {
    std::size_t left = size();
    const auto visitSome = [&](const Item* items, std::size_t count) {
      for (std::size_t i = 0; i < count && left > 0; ++i, --left) visit(items[i]);
    };
    visitSome(first_.data(), few);
    for (std::size_t i = 0; i < further_.size(); ++i) visitSome(further_[i].get(), sizeOf(i));
  }

 private:
  static std::size_t sizeOf(std::size_t further) { return few << (further + 1); }

  [[gnu::noinline]] void grow() {
    before_ = size();
    const std::size_t count = sizeOf(further_.size());
    further_.push_back(std::unique_ptr<Item[]>(new Item[count]));
    begin_ = next_ = further_.back().get();
    end_ = begin_ + count;
  }

  std::array<Item, few> first_;
  std::vector<std::unique_ptr<Item[]>> further_;
  std::size_t before_ = 0;
  Item* begin_ = first_.data();
  Item* next_ = begin_;
  Item* end_ = begin_ + few;
};

}  // namespace vell::outline_path

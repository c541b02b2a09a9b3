#pragma once

#include <memory>
#include <utility>

namespace vell::outline_path {

/// Holds one T on the heap as if by value: copies are deep, equality compares the contents. Empty only after
/// it was moved from.
template <typename T>
class Box {
 public:
  explicit Box(T value) : held_(std::make_unique<T>(std::move(value))) {}
  Box(const Box& other) : Box(*other) {}
  Box(Box&&) noexcept = default;
  Box& operator=(const Box& other) { return *this = Box(other); }
  Box& operator=(Box&&) noexcept = default;
  ~Box() = default;

  T& operator*() { return *held_; }
  const T& operator*() const { return *held_; }
  const T* operator->() const { return held_.get(); }

  friend bool operator==(const Box& left, const Box& right) { return *left == *right; }

 private:
  std::unique_ptr<T> held_;
};

}  // namespace vell::outline_path

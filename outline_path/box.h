#pragma once

#include <memory>
#include <utility>

namespace vell::outline_path {

/// Holds one T on the heap as if by value: copies are deep, equality compares the contents.
/// Never empty, save after it was moved from.
template <typename T>
class Box {
 public:
  explicit Box(T value) : held_(std::make_unique<T>(std::move(value))) {}
  /// Of whatever T is constructed from.
  template <typename Source>
  requires(std::is_convertible_v<Source, T> && !std::is_same_v<std::remove_cvref_t<Source>, T> &&
           !std::is_same_v<std::remove_cvref_t<Source>, Box>) explicit Box(Source&& source)
      : held_(std::make_unique<T>(std::forward<Source>(source))) {}
  Box(const Box& other) : held_(std::make_unique<T>(*other.held_)) {}
  Box(Box&& other) noexcept = default;
  Box& operator=(const Box& other) {
    held_ = std::make_unique<T>(*other.held_);
    return *this;
  }
  Box& operator=(Box&& other) noexcept = default;
  ~Box() = default;

  T& operator*() { return *held_; }
  const T& operator*() const { return *held_; }
  const T* operator->() const { return held_.get(); }

  friend bool operator==(const Box& left, const Box& right) { return *left == *right; }

 private:
  std::unique_ptr<T> held_;
};

}  // namespace vell::outline_path

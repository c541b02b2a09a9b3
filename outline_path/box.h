#pragma once

#include <memory>
#include <utility>

#include "outline_path/dropping.h"
#include "outline_path/node_memory.h"

namespace vell::outline_path {

/// Holds one T on the heap as if by value: copies are deep, equality compares the contents.
/// Never empty, save after it was moved from or where it was left for later. `lastPart(T&)` gives, if there
/// is such a function, the box that a T ends with, if it does.
template <typename T>
class Box {
 public:
  struct ForLater {};
  /// Empty, to be assigned before anybody looks.
  explicit Box(ForLater) {}
  explicit Box(T value) : held_(make(std::move(value))) {}
  /// Of whatever T is constructed from.
  template <typename Source>
  requires(std::is_convertible_v<Source, T> && !std::is_same_v<std::remove_cvref_t<Source>, T> &&
           !std::is_same_v<std::remove_cvref_t<Source>, Box>) explicit Box(Source&& source)
      : held_(make(std::forward<Source>(source))) {}
  Box(const Box& other) : held_(make(*other.held_)) {}
  Box(Box&& other) noexcept = default;
  Box& operator=(const Box& other) { return *this = Box(other); }
  Box& operator=(Box&& other) noexcept = default;
  ~Box() = default;

  T& operator*() { return *held_; }
  const T& operator*() const { return *held_; }
  const T* operator->() const { return held_.get(); }

  friend bool operator==(const Box& left, const Box& right) { return *left == *right; }

 private:
  struct GivesBack {
    void operator()(T* node) const noexcept { Dropping::drop(node, dropAndGive); }
    static void dropAndGive(void* memory) noexcept {
      for (T* node = static_cast<T*>(memory); node != nullptr;) {
        T* const last = takeLast(*node);
        std::destroy_at(node);
        NodeMemory<sizeof(T)>::give(node);
        node = last;
      }
    }
    /// A chain need not wait.
    static T* takeLast(T& node) noexcept {
      if constexpr (requires { lastPart(node); }) {
        Box* const last = lastPart(node);
        return last == nullptr ? nullptr : last->held_.release();
      } else {
        return nullptr;
      }
    }
  };
  using Held = std::unique_ptr<T, GivesBack>;

  template <typename Source>
  static Held make(Source&& source) {
    struct Memory {
      void* at = NodeMemory<sizeof(T)>::take();
      ~Memory() {
        if (at != nullptr) NodeMemory<sizeof(T)>::give(at);
      }
    } memory;
    Held held(new (memory.at) T(std::forward<Source>(source)));
    memory.at = nullptr;
    return held;
  }

  Held held_;
};

}  // namespace vell::outline_path

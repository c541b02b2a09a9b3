#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace vell::outline_path {

/// Memory for nodes of `size` bytes. What a tree gives back serves the next one: paths are parsed and dropped
/// in quick succession, and asking the allocator for every node takes longer than all the rest. Each thread
/// keeps a few nodes of its own.
template <std::size_t size>
class NodeMemory {
 public:
  static void* take() {
    Unused* node = unused_;
    if (node == nullptr) return takeNew();
    unused_ = node->next;
    ++room_;
    return node;
  }

  static void give(void* memory) noexcept {
    if (room_ == 0) return ::operator delete(memory);
    --room_;
    unused_ = new (memory) Unused{unused_};
  }

 private:
  struct Unused {
    Unused* next;
  };
  /// Makes room as a thread takes its first node, and gives all back as it ends.
  struct Keeper {
    Keeper() { room_ = kMost; }
    ~Keeper() {
      room_ = 0;
      for (Unused* node = unused_; node != nullptr;) {
        Unused* const next = node->next;
        ::operator delete(node);
        node = next;
      }
      unused_ = nullptr;
    }
  };

  [[gnu::noinline]] static void* takeNew() {
    static thread_local const Keeper keeper;
    static_cast<void>(keeper);
    return ::operator new(size);
  }

#if defined(__SANITIZE_ADDRESS__)
  static constexpr std::size_t kMost = 0;  // The sanitizer is to see every node come and go.
#else
  static constexpr std::size_t kMost = 128;
#endif
  // Without constructors and destructors, so that nothing is asked on the way to them.
  static constinit inline thread_local Unused* unused_ = nullptr;
  static constinit inline thread_local std::size_t room_ = 0;
};

/// For the short lists that nodes hold.
template <typename T>
struct NodeAllocator {
  using value_type = T;

  NodeAllocator() = default;
  template <typename Other>
  constexpr NodeAllocator(const NodeAllocator<Other>&) noexcept {}  // NOLINT(google-explicit-constructor)

  T* allocate(std::size_t count) {
    if (count == 1) return static_cast<T*>(NodeMemory<sizeof(T)>::take());
    if (count == 2) return static_cast<T*>(NodeMemory<2 * sizeof(T)>::take());
    return std::allocator<T>().allocate(count);
  }
  void deallocate(T* items, std::size_t count) noexcept {
    if (count == 1) return NodeMemory<sizeof(T)>::give(items);
    if (count == 2) return NodeMemory<2 * sizeof(T)>::give(items);
    std::allocator<T>().deallocate(items, count);
  }

  bool operator==(const NodeAllocator&) const = default;
};

}  // namespace vell::outline_path

#pragma once

#include <array>
#include <cstddef>

namespace vell::outline_path {

/// Drops nodes of a tree one after the other: what a node holds is dropped after it, not within it, so that a
/// deep tree takes no deep calls. Where very many wait at once the further ones are dropped within.
class Dropping {
 public:
  using Drop = void (*)(void* node) noexcept;

  static void drop(void* node, Drop how) noexcept {
    if (!isDropping_) {
      isDropping_ = true;
      how(node);
      while (count_ != 0) {
        const Waiting next = waiting_[--count_];
        next.how(next.node);
      }
      isDropping_ = false;
    } else if (count_ < waiting_.size()) {
      waiting_[count_].node = node;
      waiting_[count_++].how = how;
    } else {
      how(node);
    }
  }

 private:
  struct Waiting {
    void* node;
    Drop how;
  };

  static constinit inline thread_local bool isDropping_ = false;
  static constinit inline thread_local std::size_t count_ = 0;
  static constinit inline thread_local std::array<Waiting, 32> waiting_{};
};

}  // namespace vell::outline_path

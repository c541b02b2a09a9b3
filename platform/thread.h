#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>

namespace vell::platform {

/// Room for what nests deep: the usual stack of a thread is small on macOS. Memory that is not touched costs
/// nothing.
inline constexpr std::size_t roomyStack = 16 << 20;

/// A thread with a stack of a given size. The destructor waits for its end.
class Thread {
 public:
  /// `work` must not throw. Throws std::system_error where the system has no thread left.
  explicit Thread(std::function<void()> work, std::size_t stackBytes = roomyStack);
  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

 private:
  static void* run(void* self);

  const std::function<void()> work_;
  pthread_t thread_{};
};

/// Does the work on a stack of that size and returns behind it. What it throws is passed on;
/// std::system_error where the system has no thread left.
void onStackOf(std::size_t bytes, const std::function<void()>& work);

}  // namespace vell::platform

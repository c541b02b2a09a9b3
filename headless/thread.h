#pragma once

#include <pthread.h>

#include <functional>

namespace vell::headless {

/// A thread with room for what nests deep: the usual stack of a thread is small on macOS. The destructor
/// waits for its end.
class Thread {
 public:
  /// `work` must not throw. Throws Problem where the system has no thread left.
  explicit Thread(std::function<void()> work);
  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

 private:
  static void* run(void* self);

  const std::function<void()> work_;
  pthread_t thread_{};
};

}  // namespace vell::headless

#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdlib>
#include <functional>

namespace vell::tests {

/// The smallest stacks that our code has to do with: those of macOS.
inline constexpr std::size_t mainStack = 8 << 20, threadStack = 512 << 10;

/// Runs the work on a stack of that size, whatever this process was given.
inline void onStackOf(std::size_t bytes, std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, bytes);
  const auto run = [](void* todo) -> void* {
    (*static_cast<std::function<void()>*>(todo))();
    return nullptr;
  };
  pthread_t thread;
  if (pthread_create(&thread, &attributes, run, &work) != 0) std::abort();
  pthread_attr_destroy(&attributes);
  pthread_join(thread, nullptr);
}

}  // namespace vell::tests

#pragma once

#include <pthread.h>

#include <atomic>

#include "platform/descriptor.h"

namespace vell::headless {

/// Turns SIGTERM, SIGINT and SIGHUP into a readable descriptor. Construct it before any other thread:
/// threads inherit the signal mask that it sets.
class QuitSignals {
 public:
  QuitSignals();
  ~QuitSignals();
  QuitSignals(const QuitSignals&) = delete;
  QuitSignals& operator=(const QuitSignals&) = delete;

  /// Readable once one of the signals came.
  int descriptor() const { return readEnd_.get(); }
  /// Whether one of them did.
  const std::atomic<bool>& caught() const { return caught_; }

 private:
  static void* wait(void* self);

  platform::Descriptor readEnd_;
  platform::Descriptor writeEnd_;
  std::atomic<bool> caught_ = false;
  pthread_t thread_{};
};

}  // namespace vell::headless

#pragma once

#include <pthread.h>

#include "platform/descriptor.h"

namespace vell::headless {

/// Turns SIGTERM, SIGINT and SIGHUP into a readable descriptor. Make it before any other thread, as threads
/// inherit that these signals are left to it.
class QuitSignals {
 public:
  QuitSignals();
  ~QuitSignals();
  QuitSignals(const QuitSignals&) = delete;
  QuitSignals& operator=(const QuitSignals&) = delete;

  /// Readable once one of the signals came.
  int descriptor() const { return readEnd_.get(); }

 private:
  static void* wait(void* self);

  platform::Descriptor readEnd_;
  platform::Descriptor writeEnd_;
  pthread_t thread_{};
};

}  // namespace vell::headless

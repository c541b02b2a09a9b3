#pragma once

#include <thread>

#include "cli/console.h"
#include "platform/descriptor.h"

namespace vell::cli {

/// Ends the process, as a write would, as soon as nobody reads the output any more: a stream may be silent
/// for hours between two writes.
class ReaderWatch {
 public:
  explicit ReaderWatch(const Output& out);
  ~ReaderWatch();
  ReaderWatch(const ReaderWatch&) = delete;
  ReaderWatch& operator=(const ReaderWatch&) = delete;

 private:
  platform::Descriptor stopWatching_;
  platform::Descriptor stopped_;
  std::thread thread_;
};

}  // namespace vell::cli

#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "json/sink.h"

namespace vell::cli {

/// Writes parts of a large output on a thread of its own, in the order in which they were handed over, while
/// the next part is being made. Its user is one thread.
class BackgroundWriter {
 public:
  static constexpr std::size_t partSize = 512 * 1024;

  explicit BackgroundWriter(int descriptor);
  /// Still writes what was handed over.
  ~BackgroundWriter();
  BackgroundWriter(const BackgroundWriter&) = delete;
  BackgroundWriter& operator=(const BackgroundWriter&) = delete;

  /// Memory for the next part, the sink's padding behind it; waits for it where all is yet to be written.
  /// Throws what the writing threw.
  char* room();
  /// Has the first bytes of the memory that `room` gave written.
  void handOver(std::size_t size);
  /// Waits until everything is written. Throws what the writing threw.
  void finish();

 private:
  struct Part {
    std::size_t size = 0;
    char bytes[partSize + json::Sink::padding];
  };

  void run();
  void write(const Part& part);
  /// Waits until at most `most` parts are yet to be written.
  void awaitBacklog(std::size_t most);

  const int descriptor_;
  std::array<std::unique_ptr<Part>, 3> parts_;  // used in turn
  std::mutex mutex_;                            // guards what follows, and decides whose a part is
  std::condition_variable changed_;
  std::size_t handedOver_ = 0;
  std::size_t written_ = 0;
  bool done_ = false;
  std::exception_ptr failure_;
  std::thread thread_;
};

}  // namespace vell::cli

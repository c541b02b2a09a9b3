#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vell::platform {

/// Owns a file descriptor and closes it; -1 owns nothing.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  /// Hands the descriptor over to the caller.
  int release();

 private:
  int fd_;
};

/// Writes like write(2), goes on after interruptions and waits where the descriptor does not block. Returns
/// how many bytes went, or -1 with errno set.
ssize_t writeSome(int descriptor, const char* data, std::size_t size);

/// Writes all of the bytes with `write`, which is `writeSome` or, for sockets, `writeSocket`. False, with
/// errno set, as soon as that fails.
bool writeAll(int descriptor, std::string_view bytes,
              ssize_t (*write)(int descriptor, const char* data, std::size_t size) = writeSome);

/// Waits until the descriptor can be read without blocking or is at its end; false where that takes longer,
/// at once where the limit is not above 0.
bool waitUntilReadable(int descriptor, std::chrono::milliseconds limit);

/// Whether nobody is left to read what is written to a pipe or a socket. A peer that has only ended its own
/// writing still reads.
bool readerIsGone(int descriptor);

/// Waits until the reader of `output` is gone, and returns true; or until `stop` can be read or is at its
/// end, or `output` turns out to be nothing that can be watched, and returns false.
bool waitUntilReaderIsGone(int output, int stop);

}  // namespace vell::platform

#pragma once

#include <sys/types.h>

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

}  // namespace vell::platform

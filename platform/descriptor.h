#pragma once

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

}  // namespace vell::platform

#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace vell::json {

/// Buffers a text that is being written and passes it on in parts.
class Sink {
 public:
  virtual ~Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  void put(char c) {
    if (used_ == size_) passAll();
    buffer_[used_++] = c;
  }

  void write(std::string_view piece) {
    while (piece.size() > size_ - used_) {
      const std::string_view fits = piece.substr(0, size_ - used_);
      append(fits);
      piece.remove_prefix(fits.size());
      passAll();
    }
    append(piece);
  }

 protected:
  /// Parts are that many bytes long, the last one is shorter.
  explicit Sink(std::size_t partSize) : buffer_(new char[partSize]), size_(partSize) {}

  /// Passes on what has been written, however little.
  void passAll() {
    const std::size_t size = std::exchange(used_, 0);
    if (size > 0) pass({buffer_.get(), size});
  }

 private:
  /// May throw to stop the writing.
  virtual void pass(std::string_view part) = 0;

  void append(std::string_view piece) {
    std::memcpy(buffer_.get() + used_, piece.data(), piece.size());
    used_ += piece.size();
  }

  std::unique_ptr<char[]> buffer_;
  std::size_t size_;
  std::size_t used_ = 0;
};

}  // namespace vell::json

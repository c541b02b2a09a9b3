#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "json/sink.h"

namespace vell::json {

/// Gathers small pieces before they go to the sink; large ones pass straight through.
class Buffer {
 public:
  explicit Buffer(Sink& sink) : sink_(sink) {}

  /// How far beyond a piece's beginning `putPadded` may read.
  static constexpr std::size_t paddedRead = 64;

  void put(char c) {
    if (used_ >= size) flush();
    bytes_[used_++] = c;
  }
  void put(std::string_view piece) {
    if (used_ + piece.size() > size) {
      flush();
      if (piece.size() > size) return sink_.write(piece);
    }
    std::memcpy(bytes_ + used_, piece.data(), piece.size());
    used_ += piece.size();
  }
  /// For pieces that have at least `paddedRead` readable bytes from their beginning: a copy of fixed length
  /// is several times faster than one of a few bytes more or less.
  void putPadded(std::string_view piece) {
    if (piece.size() > paddedRead) return put(piece);
    if (used_ >= size) flush();
    std::memcpy(bytes_ + used_, piece.data(), paddedRead);
    used_ += piece.size();
  }
  void flush() {
    if (used_ > 0) sink_.write({bytes_, used_});
    used_ = 0;
  }

 private:
  static constexpr std::size_t size = 64 * 1024;

  Sink& sink_;
  std::size_t used_ = 0;
  char bytes_[size + paddedRead];
};

}  // namespace vell::json

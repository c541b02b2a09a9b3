#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace vell::json {

/// Memory that text is written to, and what becomes of the memory when it is full.
class Sink {
 public:
  /// How many bytes may be written, or read from a padded piece, where fewer count: a copy of fixed length is
  /// several times faster than one of a few bytes more or less.
  static constexpr std::size_t padding = 64;

  virtual ~Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  void write(std::string_view piece) {
    if (piece.size() > padding) return writeLong(piece);
    std::memcpy(next_, piece.data(), piece.size());
    moveTo(next_ + piece.size());
  }

  /// Where the next byte belongs, for writers that keep the place themselves: up to `padding` bytes may be
  /// written there before `moveTo` is told how many of them count.
  char* at() const { return next_; }
  /// Returns where the next byte belongs from now on.
  char* moveTo(char* at) {
    next_ = at;
    if (next_ >= end_) renew();
    return next_;
  }

 protected:
  /// At least `padding` bytes to write to; as many more lie behind them.
  struct Room {
    char* begin;
    std::size_t size;
  };

  explicit Sink(Room room) { use(room); }
  /// Passes on what has been written, however little.
  void passAll();

 private:
  /// Takes what a room holds and returns a room to go on in; may throw to stop the writing.
  virtual Room pass(std::string_view content) = 0;

  void use(Room room);
  void renew();
  void writeLong(std::string_view piece);

  char* begin_;
  char* next_;  // before end_, but while bytes are written
  char* end_;
};

}  // namespace vell::json

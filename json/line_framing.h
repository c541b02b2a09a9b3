#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "json/text.h"

namespace vell::json {

/// Splits a stream of bytes into lines, each of which holds one JSON text. The caller reads the bytes, either
/// straight into `room()` or through `feed`, and takes the lines out. Linear in the bytes, whatever the
/// length of the lines and however they arrive.
class LineFraming {
 public:
  struct Room {
    char* data;
    std::size_t size;
  };

  /// Where the next bytes may be read to; it grows with the line that is arriving. Valid until the next call.
  Room room();
  /// Takes over `count` bytes written to the room.
  void commit(std::size_t count) { bytes_.commitTail(count); }
  void feed(std::string_view bytes);

  /// The next whole line without its line feed; none until more bytes arrive.
  std::optional<Text> next();
  /// At the end of the stream, after `next` gave none: the bytes behind the last line feed, if any.
  std::optional<Text> finish();
  /// How many bytes no line was made of yet.
  std::size_t pending() const { return bytes_.size() - start_; }

 private:
  Text take(std::size_t end);
  void dropTaken();

  Text bytes_;
  std::size_t start_ = 0;    // where the line that is arriving begins
  std::size_t scanned_ = 0;  // no line feed lies between `start_` and here
};

}  // namespace vell::json

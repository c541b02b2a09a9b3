#include "json/sink.h"

#include <algorithm>

namespace vell::json {

void Sink::passAll() {
  const std::string_view content(begin_, static_cast<std::size_t>(next_ - begin_));
  next_ = begin_;
  if (!content.empty()) use(pass(content));
}

void Sink::use(Room room) {
  begin_ = next_ = room.begin;
  end_ = room.begin + room.size;
}

// Rooms are passed on filled to the last byte; what was written beyond it goes to the start of the next one.
void Sink::renew() {
  const std::string_view content(begin_, static_cast<std::size_t>(end_ - begin_));
  const std::string_view beyond(end_, static_cast<std::size_t>(next_ - end_));
  next_ = begin_;
  use(pass(content));
  std::memmove(next_, beyond.data(), beyond.size());
  next_ += beyond.size();
}

void Sink::writeLong(std::string_view piece) {
  while (!piece.empty()) {
    const std::size_t fits = std::min(piece.size(), static_cast<std::size_t>(end_ - next_));
    std::memcpy(next_, piece.data(), fits);
    moveTo(next_ + fits);
    piece.remove_prefix(fits);
  }
}

}  // namespace vell::json

#include "json/line_framing.h"

#include <algorithm>
#include <utility>

namespace vell::json {

static constexpr std::size_t smallestRead = 4096;
static constexpr std::size_t largestRead = 1 << 20;

LineFraming::Room LineFraming::room() {
  dropTaken();
  const std::size_t size = std::clamp(bytes_.size(), smallestRead, largestRead);
  return {bytes_.reserveTail(size), size};
}

void LineFraming::feed(std::string_view bytes) {
  dropTaken();
  bytes_.append(bytes);
}

std::optional<Text> LineFraming::next() {
  const std::size_t lineFeed = bytes_.view().find('\n', scanned_);
  if (lineFeed == std::string_view::npos) {
    scanned_ = bytes_.size();
    return std::nullopt;
  }
  return take(lineFeed);
}

std::optional<Text> LineFraming::finish() {
  if (start_ == bytes_.size()) return std::nullopt;
  return take(bytes_.size());
}

// Copies the line or what lies behind it, whichever is shorter; the other keeps its bytes.
Text LineFraming::take(std::size_t end) {
  const std::size_t behind = std::min(end + 1, bytes_.size());
  const std::string_view line = bytes_.view().substr(start_, end - start_);
  const std::string_view rest = bytes_.view().substr(behind);
  if (start_ > 0 || line.size() < rest.size()) {
    start_ = scanned_ = behind;
    return Text(line);
  }
  Text kept = rest.empty() ? Text() : Text(rest);
  Text whole = std::exchange(bytes_, std::move(kept));
  whole.truncate(end);
  start_ = scanned_ = 0;
  return whole;
}

void LineFraming::dropTaken() {
  if (start_ == 0) return;
  bytes_ = Text(bytes_.view().substr(start_));
  scanned_ -= start_;
  start_ = 0;
}

}  // namespace vell::json

#include "headless/server/line_buffer.h"

namespace vell::headless {
namespace {

/// A buffer that once held a long line gives its memory back.
constexpr std::size_t keptCapacity = 1 << 20;

}  // namespace

void LineBuffer::append(std::string_view bytes) {
  if (start_ == bytes_.size() && bytes_.capacity() > keptCapacity) std::string().swap(bytes_);
  bytes_.erase(0, start_);
  if (lineFeed_ != std::string::npos) lineFeed_ -= start_;
  start_ = 0;
  const std::size_t from = bytes_.size();
  bytes_.append(bytes);
  if (lineFeed_ == std::string::npos) findLineFeed(from);
}

void LineBuffer::clear() {
  std::string().swap(bytes_);
  start_ = 0;
  lineFeed_ = std::string::npos;
}

std::string_view LineBuffer::takeLine() {
  const std::size_t end = lineFeed_ == std::string::npos ? bytes_.size() : lineFeed_;
  const std::string_view line(bytes_.data() + start_, end - start_);
  start_ = lineFeed_ == std::string::npos ? end : end + 1;
  findLineFeed(start_);
  return line;
}

}  // namespace vell::headless

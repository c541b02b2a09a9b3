#include "json/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "json/large_pages.h"

namespace vell::json {

Text::Text(std::string_view bytes) { append(bytes); }

Text::Text(Text&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)) {}

Text& Text::operator=(Text&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  std::swap(capacity_, other.capacity_);
  return *this;
}

Text::~Text() { std::free(data_); }

void Text::append(std::string_view bytes) {
  if (bytes.empty()) return;
  std::memcpy(reserveTail(bytes.size()), bytes.data(), bytes.size());
  commitTail(bytes.size());
}

// realloc moves large blocks by remapping their pages, so growing costs no copy and no second block.
char* Text::reserveTail(std::size_t count) {
  if (size_ + count > capacity_) {
    const std::size_t capacity = std::max(size_ + count, capacity_ * 2);
    void* grown = std::realloc(data_, capacity + padding);
    if (grown == nullptr) throw std::bad_alloc();
    data_ = static_cast<char*>(grown);
    preferLargePages(data_, capacity);
    capacity_ = capacity;
  }
  return data_ + size_;
}

void Text::commitTail(std::size_t count) { size_ += count; }

void Text::truncate(std::size_t size) { size_ = std::min(size_, size); }

}  // namespace vell::json

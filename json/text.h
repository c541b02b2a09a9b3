#pragma once

#include <cstddef>
#include <string_view>

namespace vell::json {

/// A growable run of bytes with the slack behind its end that the tokenizer reads into.
/// Made for filling straight from a descriptor: reserve a tail, read into it, commit what came.
class Text {
 public:
  /// Bytes behind the end that may be read, whatever they hold.
  static constexpr std::size_t padding = 64;

  Text() = default;
  explicit Text(std::string_view bytes);
  Text(Text&& other) noexcept;
  Text& operator=(Text&& other) noexcept;
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text();

  const char* data() const { return data_; }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {data_, size_}; }

  void append(std::string_view bytes);
  /// Room for at least `count` more bytes behind the end; valid until the next call that grows.
  char* reserveTail(std::size_t count);
  /// Takes over `count` bytes written to the reserved tail.
  void commitTail(std::size_t count);
  /// Keeps the first `size` bytes.
  void truncate(std::size_t size);

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace vell::json

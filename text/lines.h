#pragma once

#include <cstddef>
#include <string_view>

namespace vell::text {

/// Number of the line that holds the byte, from 1.
std::size_t lineNumber(std::string_view text, std::size_t offset);

/// The end of the first line: "\r\n" or "\n", a line feed where there is none.
std::string_view lineEndOf(std::string_view text);

/// Takes a text apart at its line feeds; a carriage return before one goes with it.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  /// False at the end. A line feed at the very end of the text does not start another line.
  bool next();
  /// Puts the current line back.
  void unread();
  std::string_view line() const { return line_; }
  /// From 1.
  std::size_t number() const { return number_; }
  /// Bytes from the start of the text to the current line.
  std::size_t offset() const { return offset_; }

 private:
  std::string_view text_;
  std::string_view line_;
  std::size_t number_ = 0;
  std::size_t offset_ = 0;
  std::size_t end_ = 0;
};

}  // namespace vell::text

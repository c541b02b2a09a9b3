#pragma once

#include <string>
#include <string_view>

namespace vell::headless {

/// Cuts a byte stream into lines, looking at every byte once.
class LineBuffer {
 public:
  /// Invalidates the lines handed out.
  void append(std::string_view bytes);
  /// The stream is over: what is left is a line too.
  void end() { ended_ = true; }
  void clear();

  bool hasLine() const { return lineFeed_ != std::string::npos || (ended_ && start_ < bytes_.size()); }
  /// Takes the next line, without its line feed; only while `hasLine`. Valid until `append` or `clear`.
  std::string_view takeLine();
  /// Bytes not yet taken.
  std::size_t size() const { return bytes_.size() - start_; }

 private:
  void findLineFeed(std::size_t from) { lineFeed_ = bytes_.find('\n', from); }

  std::string bytes_;
  std::size_t start_ = 0;
  std::size_t lineFeed_ = std::string::npos;
  bool ended_ = false;
};

}  // namespace vell::headless

#pragma once

#include <string>

namespace vell::headless {

/// A file of lines with their times. When it has grown to half a megabyte, it becomes "<name>.old" and a new
/// one begins.
class LogFile {
 public:
  explicit LogFile(std::string path) : path_(std::move(path)) {}

  /// Errors are ignored.
  void append(const std::string& line) const;

 private:
  std::string path_;
};

}  // namespace vell::headless

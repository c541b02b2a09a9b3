#pragma once

#include <string>
#include <vector>

#include "platform/identifier_index.h"

namespace vell::headless {

/// What the application keeps for itself: untitled outlines, those that were closed without a name, copies of
/// what could not be saved in its place, and the persistent ids of files that hold none.
class Container {
 public:
  /// The directory must exist.
  explicit Container(const std::string& directory);

  // A path at which there is no file, in a directory that exists then. These throw Problem.

  /// "Untitled <number>.vell"
  std::string pathForUntitled() const { return freePath(untitled_); }
  std::string pathForClosed() const { return freePath(closed_); }
  std::string pathForRescued(const std::string& fileName) const;

  /// The untitled outlines of earlier runs, the lowest number first.
  std::vector<std::string> untitledFiles() const;
  bool holdsClosed(const std::string& path) const;

  platform::IdentifierIndex& identifiers() { return identifiers_; }

 private:
  static std::string freePath(const std::string& directory);

  std::string untitled_;
  std::string closed_;
  std::string rescued_;
  platform::IdentifierIndex identifiers_;
};

}  // namespace vell::headless

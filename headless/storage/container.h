#pragma once

#include <string>
#include <vector>

namespace vell::headless {

/// The files that the application keeps for itself: untitled outlines, those that were closed without a name,
/// and copies of what is not saved or could not be.
class Container {
 public:
  /// The directory must exist.
  explicit Container(const std::string& directory);

  // A path where a file may be put, in a directory that exists then. These throw Problem.

  /// "Untitled <number><extension>", a number that no other file there has; an empty file keeps the place.
  std::string pathForUntitled(const std::string& extension) const { return freePath(untitled_, extension); }
  std::string pathForClosed(const std::string& extension) const { return freePath(closed_, extension); }
  std::string pathForRescued(const std::string& fileName) const;

  /// Where a file of that name is kept until it is saved. Never throws.
  std::string pathForUnsaved(const std::string& fileName) const;
  /// What such paths hold now: where nothing is being saved, it never was.
  std::vector<std::string> unsavedFiles() const;
  /// Puts such a file where it stays for the user. Returns its path there. Throws Problem.
  std::string rescue(const std::string& unsaved) const;

  /// The untitled outlines of earlier runs, the lowest number first.
  std::vector<std::string> untitledFiles() const;
  bool holdsClosed(const std::string& path) const;

 private:
  static std::string freePath(const std::string& directory, const std::string& extension);

  std::string untitled_;
  std::string closed_;
  std::string rescued_;
  std::string unsaved_;
};

}  // namespace vell::headless

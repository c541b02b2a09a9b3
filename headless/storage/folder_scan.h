#pragma once

#include <map>
#include <string>
#include <vector>

#include "headless/storage/files.h"

namespace vell::headless {

/// Finds the outline files below a folder, again and again: after the first time only those folders are read
/// in which something changed. Outline files are those with an extension of ours but .json, which is usually
/// something else. Whatever has a name that begins with a dot is skipped, and so are links to folders.
class FolderScan {
 public:
  /// The most that is taken for a folder of outlines.
  struct Limits {
    std::size_t files = 10'000;
    std::size_t folders = 100'000;
  };

  explicit FolderScan(std::string folder) : FolderScan(std::move(folder), Limits()) {}
  FolderScan(std::string folder, Limits limits) : folder_(std::move(folder)), limits_(limits) {}

  const std::string& folder() const { return folder_; }
  /// Looks for what is there now. False where that is what was there before. Throws Problem where it is too
  /// much.
  bool look();
  /// What the last look found, sorted.
  std::vector<std::string> files() const;

 private:
  struct Listing {
    FileStamp stamp;
    bool settled = false;  ///< a later change would show in the stamp
    std::vector<std::string> files;
    std::vector<std::string> folders;
  };
  using Listings = std::map<std::string, Listing>;

  static Listing list(const std::string& folder, const FileStamp& stamp);
  void checkLimits(const Listings& listings, std::size_t files) const;

  std::string folder_;
  Limits limits_;
  Listings listings_;  ///< by folder
};

}  // namespace vell::headless

#include "headless/storage/folder_scan.h"

#include <algorithm>
#include <filesystem>

#include "document/timestamp.h"
#include "formats/format.h"
#include "headless/access.h"

namespace vell::headless {
namespace {

namespace fs = std::filesystem;

/// Two changes within this time may leave the same stamp, on the coarsest file systems.
constexpr std::int64_t stampGrain = 2'000;

bool isSettled(const FileStamp& stamp) {
  return document::currentTime() - stamp.modified / 1'000'000 > stampGrain;
}

bool isOutline(const std::string& path) {
  const formats::Format* format = formats::formatForFile(path);
  return format != nullptr && format->read != nullptr && format->name != "json";
}

bool isHidden(const fs::path& path) { return path.filename().native().starts_with('.'); }

}  // namespace

bool FolderScan::look() {
  Listings now;
  std::size_t files = 0;
  bool changed = false;
  for (std::vector<std::string> waiting{folder_}; !waiting.empty();) {
    throwIfAbandoned();
    const std::string folder = std::move(waiting.back());
    waiting.pop_back();
    const FileStamp stamp = stampOf(folder);
    auto known = listings_.find(folder);
    const bool same = known != listings_.end() && known->second.settled && known->second.stamp == stamp;
    Listing listing = same ? known->second : list(folder, stamp);
    changed = changed || known == listings_.end() || listing.files != known->second.files ||
              listing.folders != known->second.folders;
    files += listing.files.size();
    waiting.insert(waiting.end(), listing.folders.begin(), listing.folders.end());
    now.emplace(folder, std::move(listing));
    checkLimits(now, files);
  }
  listings_ = std::move(now);
  return changed;
}

/// A folder that is gone or cannot be read holds nothing.
FolderScan::Listing FolderScan::list(const std::string& folder, const FileStamp& stamp) {
  Listing listing{stamp, isSettled(stamp), {}, {}};
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (isHidden(at->path())) continue;
    std::error_code unknown;
    if (at->is_directory(unknown)) {
      if (!at->is_symlink(unknown)) listing.folders.push_back(at->path().string());
    } else if (isOutline(at->path().string()) && at->is_regular_file(unknown)) {
      listing.files.push_back(at->path().string());
    }
  }
  std::sort(listing.files.begin(), listing.files.end());
  std::sort(listing.folders.begin(), listing.folders.end());
  return listing;
}

void FolderScan::checkLimits(const Listings& listings, std::size_t files) const {
  if (files > limits_.files)
    throw Problem(folder_ + " holds more than " + std::to_string(limits_.files) +
                  " outline files: serve a folder below it");
  if (listings.size() > limits_.folders)
    throw Problem(folder_ + " holds more than " + std::to_string(limits_.folders) +
                  " folders: serve a folder below it");
}

std::vector<std::string> FolderScan::files() const {
  std::vector<std::string> files;
  for (const auto& [folder, listing] : listings_)
    files.insert(files.end(), listing.files.begin(), listing.files.end());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace vell::headless

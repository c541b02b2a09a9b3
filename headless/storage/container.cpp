#include "headless/storage/container.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "headless/editing/uuid.h"
#include "headless/storage/files.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

constexpr std::string_view prefix = "Untitled ";
constexpr std::string_view suffix = ".vell";

/// The number in the file's name; 0 where it is named otherwise.
unsigned numberOf(const std::string& path) {
  const std::string name = fileName(path);
  if (name.size() <= prefix.size() + suffix.size()) return 0;
  if (!name.starts_with(prefix) || !name.ends_with(suffix)) return 0;
  const char* digitsEnd = name.data() + name.size() - suffix.size();
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data() + prefix.size(), digitsEnd, number);
  return error == std::errc() && end == digitsEnd ? number : 0;
}

}  // namespace

Container::Container(const std::string& directory)
    : untitled_(directory + "/Untitled"),
      closed_(directory + "/Closed"),
      rescued_(directory + "/Rescued"),
      identifiers_(directory) {}

std::string Container::freePath(const std::string& directory) {
  makePrivateDirectory(directory);
  for (unsigned number = 1;; ++number) {
    std::string path = directory + "/" + std::string(prefix) + std::to_string(number) + std::string(suffix);
    if (!std::filesystem::exists(path)) return path;
  }
}

std::string Container::pathForRescued(const std::string& fileName) const {
  makePrivateDirectory(rescued_);
  return rescued_ + "/" + newUuid().substr(0, 8) + " " + fileName;
}

std::vector<std::string> Container::untitledFiles() const {
  std::vector<std::string> paths;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(untitled_, missing))
    if (numberOf(entry.path().string()) != 0) paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end(),
            [](const std::string& a, const std::string& b) { return numberOf(a) < numberOf(b); });
  return paths;
}

bool Container::holdsClosed(const std::string& path) const {
  return std::filesystem::path(path).parent_path() == closed_;
}

}  // namespace vell::headless

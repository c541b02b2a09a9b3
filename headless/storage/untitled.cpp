#include "headless/storage/untitled.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "headless/editing/problem.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

constexpr std::string_view prefix = "Untitled ";
constexpr std::string_view suffix = ".vell";

/// The number in the file's name; 0 where it is named otherwise.
unsigned numberOf(const std::string& path) {
  const std::string name = fileName(path);
  if (name.size() <= prefix.size() + suffix.size() || name.compare(0, prefix.size(), prefix) != 0) return 0;
  const char* digitsEnd = name.data() + name.size() - suffix.size();
  if (std::string_view(digitsEnd, suffix.size()) != suffix) return 0;
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data() + prefix.size(), digitsEnd, number);
  return error == std::errc() && end == digitsEnd ? number : 0;
}

}  // namespace

std::string freeUntitledPath(const std::string& directory) {
  for (unsigned number = 1;; ++number) {
    const std::string name = std::string(prefix) + std::to_string(number) + std::string(suffix);
    if (!std::filesystem::exists(directory + "/" + name)) return directory + "/" + name;
  }
}

std::vector<std::string> untitledFiles(const std::string& directory) {
  std::vector<std::string> paths;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(directory, missing))
    if (numberOf(entry.path().string()) != 0) paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end(),
            [](const std::string& a, const std::string& b) { return numberOf(a) < numberOf(b); });
  return paths;
}

void removeFile(const std::string& path) {
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) throw Problem("Cannot remove " + path + ": " + error.message());
}

}  // namespace vell::headless

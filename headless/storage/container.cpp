#include "headless/storage/container.h"

#include <fcntl.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>

#include "headless/editing/problem.h"
#include "headless/editing/uuid.h"
#include "headless/storage/files.h"
#include "headless/storage/paths.h"
#include "platform/descriptor.h"

namespace vell::headless {
namespace {

constexpr std::string_view prefix = "Untitled ";

/// The number in the name of an untitled outline's file; 0 where it is named otherwise.
unsigned numberOf(const std::filesystem::path& path) {
  const std::string name = path.stem().string();
  if (!name.starts_with(prefix) || !path.has_extension()) return 0;
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size() ? number : 0;
}

std::string withTag(const std::string& fileName) {
  const std::filesystem::path name(fileName);
  return fittedName(newUuid().substr(0, 8) + " ", name.stem().string(), name.extension().string());
}

std::vector<std::string> filesIn(const std::string& directory) {
  std::vector<std::string> paths;
  std::error_code error;
  for (std::filesystem::directory_iterator at(directory, error), end; !error && at != end;
       at.increment(error))
    paths.push_back(at->path().string());
  return paths;
}

}  // namespace

Container::Container(const std::string& directory)
    : untitled_(directory + "/Untitled"),
      closed_(directory + "/Closed"),
      rescued_(directory + "/Rescued"),
      unsaved_(directory + "/Unsaved") {
  makePrivateDirectory(unsaved_);
}

std::string Container::freePath(const std::string& directory, const std::string& extension) {
  makePrivateDirectory(directory);
  unsigned highest = 0;
  for (const std::string& path : filesIn(directory)) highest = std::max(highest, numberOf(path));
  const std::string path = directory + "/" + std::string(prefix) + std::to_string(highest + 1) + extension;
  const platform::Descriptor place(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!place) throw systemProblem("Cannot make " + path);
  return path;
}

std::string Container::pathForRescued(const std::string& fileName) const {
  makePrivateDirectory(rescued_);
  return rescued_ + "/" + withTag(fileName);
}

std::string Container::pathForUnsaved(const std::string& fileName) const {
  return unsaved_ + "/" + withTag(fileName);
}

std::vector<std::string> Container::unsavedFiles() const { return filesIn(unsaved_); }

std::string Container::rescue(const std::string& unsaved) const {
  makePrivateDirectory(rescued_);
  std::string path = rescued_ + "/" + fileName(unsaved);
  if (std::rename(unsaved.c_str(), path.c_str()) != 0) throw systemProblem("Cannot move " + unsaved);
  return path;
}

std::vector<std::string> Container::untitledFiles() const {
  std::vector<std::string> paths = filesIn(untitled_);
  std::erase_if(paths, [](const std::string& path) { return numberOf(path) == 0; });
  std::sort(paths.begin(), paths.end(),
            [](const std::string& a, const std::string& b) { return numberOf(a) < numberOf(b); });
  return paths;
}

bool Container::holdsClosed(const std::string& path) const {
  return std::filesystem::path(path).parent_path() == closed_;
}

}  // namespace vell::headless

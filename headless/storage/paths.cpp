#include "headless/storage/paths.h"

#include <algorithm>
#include <filesystem>

#include "text/percent_encoding.h"
#include "text/utf8.h"

namespace vell::headless {

std::string standardisedPath(const std::string& path) {
  std::string text = std::filesystem::absolute(path).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  if (text.compare(0, 2, "//") == 0) text.erase(0, 1);
  return text;
}

std::string resolvedPath(const std::string& path) {
  namespace fs = std::filesystem;
  constexpr int mostLinks = 40;
  std::error_code error;
  fs::path resolved = fs::weakly_canonical(path, error);
  // A link to a file that is not there leads to it all the same.
  for (int links = 0; links < mostLinks && !error && fs::is_symlink(resolved, error); ++links)
    resolved = fs::weakly_canonical(resolved.parent_path() / fs::read_symlink(resolved, error), error);
  return error && error != std::errc::no_such_file_or_directory ? path : resolved.string();
}

std::string fileUrl(std::string_view path) {
  return "file://" + text::percentEncoded(path, "-._~!$&'()*+,;=:@/");
}

std::string fileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

std::string folderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

std::string fittedName(std::string_view start, std::string_view middle, std::string_view end) {
  constexpr std::size_t longest = 255;
  const std::size_t taken = std::min(longest, start.size() + end.size());
  std::size_t length = std::min(middle.size(), longest - taken);
  while (length < middle.size() && length > 0 && text::isContinuation(middle[length])) --length;
  return std::string(start).append(middle.substr(0, length)).append(end);
}

}  // namespace vell::headless

#include "outlines/location.h"

#include <filesystem>

#include "outlines/open_error.h"

namespace vell::outlines {

namespace fs = std::filesystem;

std::string absolutize(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::path(path).is_absolute() ? fs::path(path) : fs::current_path(error) / path;
  if (error) throw OpenError("Cannot determine the current directory: " + error.message());
  const fs::path normal = absolute.lexically_normal();
  return normal.has_filename() ? normal.string() : normal.parent_path().string();
}

std::string hostVellAppURL(const std::optional<std::string>& executable) {
  if (!executable) throw OpenError("Cannot locate vell CLI executable path");
  std::error_code error;
  const fs::path canonical = fs::canonical(*executable, error);
  const fs::path resolved = error ? fs::path(*executable) : canonical;
  for (fs::path place = resolved.parent_path(); place.has_relative_path(); place = place.parent_path()) {
    if (place.extension() == ".app") return place.string();
  }
  throw OpenError("vell CLI is not running inside a Vell.app bundle (executable: " + resolved.string() + ")");
}

}  // namespace vell::outlines

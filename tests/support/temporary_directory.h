#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vell::tests {

/// The bytes of a file; none where there is no such file.
std::string contentOf(const std::string& path);

/// A directory of a test's own, removed with all it holds.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string path() const { return path_.string(); }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  /// Writes a file and the directories above it. Returns its path.
  std::string write(const std::string& name, std::string_view content) const;

 private:
  std::filesystem::path path_;
};

/// A temporary directory that is the home directory, with the application's container in it.
class TemporaryHome : public TemporaryDirectory {
 public:
  TemporaryHome();
  ~TemporaryHome();

 private:
  std::optional<std::string> before_;
};

}  // namespace vell::tests

#include "tests/support/temporary_directory.h"

#include <stdlib.h>  // NOLINT: mkdtemp and setenv are POSIX
#include <unistd.h>  // where macOS declares mkdtemp

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "platform/container.h"

namespace vell::tests {

namespace fs = std::filesystem;

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TemporaryDirectory::TemporaryDirectory() {
  std::string name = "/tmp/vell-XXXXXX";  // $TMPDIR may be too long for a home's socket
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
  path_ = fs::canonical(name);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryDirectory::write(const std::string& name, std::string_view content) const {
  const fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
  return file.string();
}

TemporaryHome::TemporaryHome() {
  if (const char* home = getenv("HOME")) before_ = home;
  setenv("HOME", path().c_str(), 1);
  fs::create_directories(platform::containerDirectory());
}

TemporaryHome::~TemporaryHome() {
  if (before_) {
    setenv("HOME", before_->c_str(), 1);
  } else {
    unsetenv("HOME");
  }
}

}  // namespace vell::tests

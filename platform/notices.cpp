#include "platform/notices.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "platform/descriptor.h"

namespace vell::platform {
namespace {

constexpr off_t mostBytes = 64 << 10;

/// Locked until the descriptor is closed; none where there is no such file.
Descriptor openNotices(const std::string& directory, int flags) {
  Descriptor file(::open((directory + "/notices").c_str(), flags | O_CLOEXEC, 0600));
  if (file && ::flock(file.get(), LOCK_EX) != 0) return Descriptor();
  return file;
}

}  // namespace

void leaveNotice(const std::string& line, const std::string& directory) {
  const Descriptor file = openNotices(directory, O_WRONLY | O_CREAT | O_APPEND);
  struct stat status {};
  if (file && ::fstat(file.get(), &status) == 0 && status.st_size < mostBytes)
    writeAll(file.get(), line + "\n");
}

std::vector<std::string> takeNotices(const std::string& directory) {
  const Descriptor file = openNotices(directory, O_RDWR);
  if (!file) return {};
  std::stringstream text;
  char part[4096];
  for (ssize_t count = 0; (count = ::read(file.get(), part, sizeof part)) > 0;) text.write(part, count);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  if (!lines.empty() && ::ftruncate(file.get(), 0) != 0) return {};
  return lines;
}

}  // namespace vell::platform

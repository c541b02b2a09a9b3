#include "headless/storage/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>

#include "document/timestamp.h"
#include "platform/descriptor.h"

namespace vell::headless {
namespace {

constexpr off_t mostBytes = 512 << 10;

}  // namespace

void LogFile::append(const std::string& line) const {
  struct stat status {};
  if (stat(path_.c_str(), &status) == 0 && status.st_size > mostBytes)
    std::rename(path_.c_str(), (path_ + ".old").c_str());
  const platform::Descriptor file(open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  const std::string time = document::formatTimestamp(document::currentTime());
  if (file) platform::writeAll(file.get(), time + " " + line + "\n");
}

}  // namespace vell::headless

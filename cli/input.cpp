#include "cli/input.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "platform/descriptor.h"
#include "text/utf8.h"

namespace vell::cli {
namespace {

[[noreturn]] void failReading(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), "Cannot read " + what);
}

std::string readToEnd(int descriptor, const std::string& what) {
  constexpr std::size_t chunk = 64 * 1024;
  std::string text;
  std::size_t size = 0;
  while (true) {
    text.resize(size + std::max(chunk, size));
    const ssize_t count = ::read(descriptor, text.data() + size, text.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failReading(what);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  text.resize(size);
  return text;
}

std::string readStandardInput(Console& console) {
  if (isatty(console.input())) console.say("Reading standard input until end of file (Ctrl-D).\n");
  return readToEnd(console.input(), "standard input");
}

std::string readFile(const std::string& path) {
  const platform::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) failReading(path);
  return readToEnd(file.get(), path);
}

}  // namespace

std::string readInput(const std::string& path, Console& console) {
  std::string text = path == "-" ? readStandardInput(console) : readFile(path);
  if (text::findInvalidUtf8(text)) throw std::runtime_error("Input is not valid UTF-8.");
  return text;
}

}  // namespace vell::cli

#include "cli/console.h"

#include <fcntl.h>
#include <unistd.h>

#include "cli/write_all.h"

namespace vell::cli {

json::Sink::Room Output::pass(std::string_view content) {
  writeAll(descriptor_, content);
  return {buffer_, bufferSize};
}

void Console::say(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = writeSome(error_, text);
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void fillClosedDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free number is taken, which is this one.
    if (::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace vell::cli

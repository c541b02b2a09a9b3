#include "cli/console.h"

#include <fcntl.h>
#include <unistd.h>

#include "cli/write_all.h"

namespace vell::cli {
/// Beyond so much, printing and writing at the same time saves more than a thread costs.
static constexpr std::size_t largeOutput = 1 << 20;

Output::Output(int descriptor) : Sink({first_, firstSize}), descriptor_(descriptor) {}

void Output::flush() {
  passAll();
  if (background_) background_->finish();
}

json::Sink::Room Output::pass(std::string_view content) {
  passed_ += content.size();
  if (background_) {
    background_->handOver(content.size());
  } else {
    writeAll(descriptor_, content);
    if (passed_ < largeOutput) return {first_, firstSize};
    background_ = std::make_unique<BackgroundWriter>(descriptor_);
  }
  return {background_->room(), BackgroundWriter::partSize};
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

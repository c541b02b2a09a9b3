#include "cli/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "cli/colours.h"
#include "cli/waiting_line.h"
#include "text/utf8.h"

namespace vell::cli {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// `beforeRead` is called before each read.
template <class Call>
std::string readToEnd(int descriptor, const std::string& what, const Call& beforeRead) {
  constexpr std::size_t chunk = 64 * 1024;
  std::string text;
  std::size_t size = 0;
  while (true) {
    text.resize(size + std::max(chunk, size));
    beforeRead();
    const ssize_t count = ::read(descriptor, text.data() + size, text.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail("Cannot read " + what);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  text.resize(size);
  return text;
}

std::string readFile(const std::string& path) {
  const platform::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) fail("Cannot read " + path);
  return readToEnd(file.get(), path, [] {});
}

void watchReader(int output, int stop) {
  if (platform::waitUntilReaderIsGone(output, stop)) _exit(ExitStatus::closedPipe);
}

}  // namespace

void Output::pass(std::string_view part) {
  if (!platform::writeAll(descriptor_, part)) {
    if (errno == EPIPE) throw ClosedOutput();
    fail("Cannot write to standard output");
  }
}

Console::Console(int input, int output, int error)
    : out(output),
      input_(input),
      error_(error),
      coloursOutput_(takesColours(output)),
      coloursError_(takesColours(error)),
      showsProgress_(isCapableTerminal(error)) {}

void Console::print(const json::Node& data, json::Layout layout) {
  if (coloursOutput_) {
    JsonColours coloured(out);
    json::write(data, layout, coloured);
    coloured.finish();
  } else {
    json::write(data, layout, out);
  }
  out.write("\n");
}

std::string Console::readInput() {
  constexpr std::chrono::seconds patience(1);
  const bool typed = isatty(input_) == 1;
  sayToTypist("Reading standard input until end of file (Ctrl-D).\n");
  WaitingLine line(*this, "standard input");
  return readToEnd(input_, "standard input", [&] {
    if (typed || !showsProgress_ || platform::waitUntilReadable(input_, patience)) return;
    line.show();
  });
}

std::string Console::read(const std::string& path) {
  std::string text = path == "-" ? readInput() : readFile(path);
  if (text::findInvalidUtf8(text)) throw std::runtime_error("Input is not valid UTF-8.");
  return text;
}

void Console::sayToTypist(std::string_view text) {
  if (isatty(input_) == 1 && isatty(error_) == 1) say(text);
}

void Console::say(std::string_view text) {
  platform::writeAll(error_, coloursError_ ? colouredMessage(text) : text);
}

ReaderWatch::ReaderWatch(const Output& out) {
  int ends[2];
  if (pipe(ends) != 0) fail("Cannot watch standard output");
  stopped_ = platform::Descriptor(ends[0]);
  stopWatching_ = platform::Descriptor(ends[1]);
  thread_ = std::thread(watchReader, out.descriptor(), stopped_.get());
}

ReaderWatch::~ReaderWatch() {
  stopWatching_ = platform::Descriptor();  // the thread sees its other end hang up
  thread_.join();
}

void fillClosedDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free number is taken, which is this one.
    if (::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace vell::cli

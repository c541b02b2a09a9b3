#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "json/rewrite.h"
#include "json/sink.h"
#include "platform/descriptor.h"

namespace vell::cli {

/// What a run leaves behind for the shell.
enum ExitStatus : int {
  success = 0,
  failure = 1,
  usage = 64,
  /// The reader of standard output went away: as if the signal for it had ended the run.
  closedPipe = 141,
};

/// Nobody reads standard output any more; the run ends without a word.
class ClosedOutput : public std::runtime_error {
 public:
  ClosedOutput() : std::runtime_error("The reader of standard output has gone.") {}
};

/// Buffered bytes on their way to a descriptor that someone else owns.
class Output : public json::Sink {
 public:
  /// Writing throws ClosedOutput when the reader is gone, std::system_error when the bytes cannot be written.
  explicit Output(int descriptor) : Sink(bufferSize), descriptor_(descriptor) {}

  /// Hands everything written so far to the system. Must be called at the end: nothing else does.
  void flush() { passAll(); }
  int descriptor() const { return descriptor_; }

 private:
  static constexpr std::size_t bufferSize = 64 * 1024;

  void pass(std::string_view part) override;

  int descriptor_;
};

/// The three streams of a run.
class Console {
 public:
  explicit Console(int input = 0, int output = 1, int error = 2);

  Output out;

  /// Writes a value and a line feed to standard output, in colours where a person sees it.
  void print(const json::Node& data, json::Layout layout);
  /// The whole text of a file, or of standard input for "-"; on a terminal standard error says what is waited
  /// for. Throws when it cannot be read or is not UTF-8.
  std::string read(const std::string& path);
  /// Says something to a person who types standard input; nothing where that is no terminal.
  void sayToTypist(std::string_view text);
  /// Writes to standard error at once, in colours where a person sees it; failures are ignored.
  void say(std::string_view text);
  /// Whether a line on standard error can be wiped again.
  bool showsProgress() const { return showsProgress_; }

 private:
  std::string readInput();

  int input_;
  int error_;
  bool coloursOutput_;
  bool coloursError_;
  bool showsProgress_;
};

/// Ends the process, as a write would, as soon as nobody reads the output any more: a stream may be silent
/// for hours between two writes.
class ReaderWatch {
 public:
  explicit ReaderWatch(const Output& out);
  ~ReaderWatch();
  ReaderWatch(const ReaderWatch&) = delete;
  ReaderWatch& operator=(const ReaderWatch&) = delete;

 private:
  platform::Descriptor stopWatching_;
  platform::Descriptor stopped_;
  std::thread thread_;
};

/// Gives descriptors 0 to 2 a meaning where the caller closed them, so that no connection takes their
/// numbers. Reading the substitute of standard input and writing those of the others fails.
void fillClosedDescriptors();

}  // namespace vell::cli

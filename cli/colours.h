#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "json/sink.h"

// Colours for people: only on a terminal, and not where NO_COLOR is set. Without the escape sequences the
// text is the same, byte for byte.
namespace vell::cli {

/// Whether the descriptor is a terminal that understands escape sequences.
bool isCapableTerminal(int descriptor);
/// Whether what is written there is to be coloured.
bool takesColours(int descriptor);

/// Colours JSON text on its way to another sink, each kind of value as jq does.
class JsonColours : public json::Sink {
 public:
  explicit JsonColours(json::Sink& out) : Sink(bufferSize), out_(out) {}

  /// Passes on the rest and ends the colour. Must be called behind the text.
  void finish();

 private:
  static constexpr std::size_t bufferSize = 4096;

  void pass(std::string_view part) override;
  void paint(char c);
  void use(const char* colour);

  json::Sink& out_;
  const char* colour_ = nullptr;
  std::vector<bool> inObject_;  // of each container that is open
  bool keyComes_ = false;
  bool inString_ = false;
  bool escaped_ = false;
};

/// What goes to standard error, with its labels, carets and hints coloured.
std::string colouredMessage(std::string_view text);

}  // namespace vell::cli

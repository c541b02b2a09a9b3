#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "json/line_framing.h"
#include "platform/descriptor.h"

namespace vell::headless {

/// One message between the application and a script's process: a line of a word and JSON texts.
///
/// The application begins with `script ["version","source"]`, and a third text where there is an input. The
/// process asks with `call method {params}`, is answered with `result {…}` or `error "…"`, tells what the
/// script logs with `log "…"`, and ends with `value {…}` or `fault "…"`.
struct ScriptMessage {
  json::Text line;
  std::string_view word;
  std::string_view rest;  ///< behind the word and its blank
};

/// Takes the text up to the next blank off the front, with the blank.
std::string_view takeWord(std::string_view& text);

/// One end of the socket between the application and a script's process.
class ScriptChannel {
 public:
  explicit ScriptChannel(platform::Descriptor socket) : socket_(std::move(socket)) {}

  int descriptor() const { return socket_.get(); }
  /// False where the other end is gone.
  bool send(std::string_view word, std::string_view rest);
  /// Reads what has come, or waits for it; false at the end of the stream.
  bool receive();
  /// The next message that has come whole.
  std::optional<ScriptMessage> next();

 private:
  platform::Descriptor socket_;
  json::LineFraming lines_;
};

}  // namespace vell::headless

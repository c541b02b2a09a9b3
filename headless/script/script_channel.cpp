#include "headless/script/script_channel.h"

#include <sys/socket.h>

#include <cerrno>

#include "platform/socket.h"

namespace vell::headless {

std::string_view takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  return word;
}

bool ScriptChannel::send(std::string_view word, std::string_view rest) {
  std::string line;
  line.reserve(word.size() + rest.size() + 2);
  line.append(word).append(" ").append(rest).append("\n");
  return platform::writeAll(socket_.get(), line, platform::writeSocket);
}

bool ScriptChannel::receive() {
  const json::LineFraming::Room room = lines_.room();
  const ssize_t count = recv(socket_.get(), room.data, room.size, 0);
  if (count < 0 && errno == EINTR) return true;
  if (count <= 0) return false;
  lines_.commit(static_cast<std::size_t>(count));
  return true;
}

std::optional<ScriptMessage> ScriptChannel::next() {
  auto line = lines_.next();
  if (!line) return std::nullopt;
  ScriptMessage message{std::move(*line), {}, {}};
  message.rest = message.line.view();
  message.word = takeWord(message.rest);
  return message;
}

}  // namespace vell::headless

#include "headless/server/handover.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <nlohmann/json.hpp>

#include "headless/editing/problem.h"
#include "platform/socket.h"

namespace vell::headless {
namespace {

using nlohmann::json;

void sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = platform::writeSocket(socket, bytes.data(), bytes.size());
    if (count < 0) throw systemProblem("The running application does not listen");
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string receiveLine(int socket, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  std::string line;
  while (line.find('\n') == std::string::npos) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd waiting{socket, POLLIN, 0};
    if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) == 0)
      throw Problem("The running application does not answer.");
    std::array<char, 4096> chunk;
    const ssize_t count = recv(socket, chunk.data(), chunk.size(), 0);
    if (count <= 0) throw Problem("The running application closed the connection without an answer.");
    line.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return line;
}

}  // namespace

std::vector<std::string> handOver(const std::vector<std::string>& paths, const platform::Descriptor& socket,
                                  std::chrono::milliseconds limit) {
  const json request = {
      {"jsonrpc", "2.0"}, {"id", 1}, {"method", "application.open"}, {"params", {{"paths", paths}}}};
  sendAll(socket.get(), request.dump(-1, ' ', false, json::error_handler_t::replace) + "\n");
  const json answer = json::parse(receiveLine(socket.get(), limit), nullptr, false);
  if (!answer.is_object() || !answer.contains("result"))
    throw Problem("The running application cannot open files: " + answer.dump());
  std::vector<std::string> faults;
  for (const json& entry : answer["result"])
    if (entry.contains("error")) faults.push_back(entry["error"].get<std::string>());
  return faults;
}

}  // namespace vell::headless

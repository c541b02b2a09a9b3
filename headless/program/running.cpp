#include "headless/program/running.h"

#include <sys/socket.h>

#include "headless/editing/problem.h"
#include "json/document.h"
#include "json/error.h"
#include "json/line_framing.h"
#include "json/writer.h"
#include "platform/socket.h"

namespace vell::headless {
namespace {

json::Text receiveLine(int socket, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  json::LineFraming lines;
  for (;;) {
    if (auto line = lines.next()) return std::move(*line);
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (!platform::waitUntilReadable(socket, left))
      throw Problem(
          "The running application does not answer: wait for it, or end it with \"vell-headless stop\"");
    const json::LineFraming::Room room = lines.room();
    const ssize_t count = recv(socket, room.data, room.size, 0);
    if (count <= 0) throw Problem("The running application closed the connection without an answer.");
    lines.commit(static_cast<std::size_t>(count));
  }
}

std::string requestLine(std::string_view method, std::string_view params) {
  std::string line;
  json::Writer(line)
      .beginObject()
      .member("id", 1)
      .member("jsonrpc", "2.0")
      .member("method", method)
      .key("params")
      .raw(params)
      .endObject();
  return line += '\n';
}

/// What the answer to `application.open` says about files that did not open.
std::vector<std::string> faultsIn(std::string_view answer) try {
  const json::Document document(answer);
  const auto entries = document.root().find("result");
  if (!entries) throw Problem("The running application cannot open files: " + std::string(answer));
  std::vector<std::string> faults;
  for (const json::Node& entry : entries->elements())
    if (const auto error = entry.find("error")) faults.push_back(error->string().value_or(""));
  return faults;
} catch (const json::ParseError&) {
  throw Problem("The running application cannot open files: " + std::string(answer));
}

}  // namespace

json::Text ask(const platform::Descriptor& socket, std::string_view method, std::string_view params,
               std::chrono::milliseconds limit) {
  if (!platform::writeAll(socket.get(), requestLine(method, params), platform::writeSocket))
    throw systemProblem("The running application does not listen");
  return receiveLine(socket.get(), limit);
}

std::vector<std::string> handOver(const std::vector<std::string>& paths, const platform::Descriptor& socket,
                                  std::chrono::milliseconds limit) {
  std::string params;
  json::Writer(params).beginObject().key("paths").array(paths).endObject();
  return faultsIn(ask(socket, "application.open", params, limit).view());
}

}  // namespace vell::headless

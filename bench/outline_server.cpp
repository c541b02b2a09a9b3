#include "bench/outline_server.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <utility>

#include "formats/format.h"
#include "headless/storage/files.h"
#include "ipc/message.h"

namespace vell::bench {
namespace {

std::string vellText(int rows) {
  constexpr const char* marks[] = {"# ", "[ ] ", "[x] ", ""};
  std::string text = "vell 1\ncreated: 2026-01-01T00:00:00Z\n\n";
  std::mt19937 random(1);
  for (unsigned depth = 0, row = 0; row < static_cast<unsigned>(rows); ++row) {
    depth = row == 0 ? 0 : static_cast<unsigned>(random() % std::min(depth + 2, 6U));
    text.append(depth, '\t').append(marks[random() % 4]);
    text += "some words of row " + std::to_string(random() % 100000);
    if (random() % 50 == 0) text += " and a needle";
    if (random() % 4 == 0) text += " {priority=" + std::to_string(random() % 9) + "}";
    text += '\n';
  }
  return text;
}

ipc::VellClient connect(const std::string& socket) {
  for (;;) {
    try {
      return ipc::VellClient(socket);
    } catch (const ipc::ClientError& error) {
      if (!error.meansNotRunning()) throw;
      usleep(1000);
    }
  }
}

}  // namespace

void writeOutlineFile(const std::string& file, int rows) {
  std::string text = vellText(rows);
  const formats::Format& format = *formats::formatForFile(file);
  if (format.name != "vell") {
    document::Outline outline;
    formats::readFile(*formats::formatNamed("vell"), std::exchange(text, {}), {}, outline);
    format.write(outline, formats::placeAll(outline), false, text);
  }
  std::ofstream(file, std::ios::binary) << text;
}

OutlineServer::OutlineServer(int rows)
    : rows_(rows),
      application_({"sh", "-c", "exec \"$0\" 2>/dev/null", VELL_HEADLESS}),  // it greets people
      client_(connect(stage_.socket())) {}

std::string OutlineServer::file(const std::string& extension) const {
  std::string file = stage_.path("outline." + extension);
  if (!std::filesystem::exists(file)) writeOutlineFile(file, rows_);
  return file;
}

json::Text OutlineServer::call(const std::string& method, const std::string& params) {
  client_.writeAll(ipc::requestLine(1, method, params));
  json::LineFraming arrived;
  json::Text answer = client_.readLine(arrived);
  const std::string_view begin = answer.view().substr(0, 200);
  if (begin.find(R"("result":)") == begin.npos) throw std::runtime_error(method + ": " + std::string(begin));
  return answer;
}

void OutlineServer::open(const std::string& file) {
  const json::Text answer = call("application.open", R"({"paths":[")" + file + R"("]})");
  if (answer.view().find(R"("outline":)") == answer.view().npos)
    throw std::runtime_error("does not open: " + std::string(answer.view()));
}

void OutlineServer::change() {
  const std::string row = std::to_string(2 + ++changes_ * 7919 % rows_);
  call("row.update", R"({"rows":[")" + row + R"("],"append":" more"})");
}

void OutlineServer::awaitSaved(const std::string& file, const std::function<void()>& change) const {
  const auto before = headless::stampOf(file);
  change();
  while (headless::stampOf(file) == before) usleep(200);
}

Observers::Observers(const OutlineServer& server, int count) {
  for (int i = 0; i < count; ++i) {
    sockets_.push_back(ipc::connectToApplication(server.stage().socket()));
    const std::string request = ipc::requestLine(1, "outline.observe", "{}");
    if (!platform::writeAll(sockets_.back().get(), request)) throw std::runtime_error("cannot observe");
  }
  await(2);  // the answer and the snapshot
}

void Observers::await(int lines) {
  static char bytes[1 << 18];
  std::vector<int> left(sockets_.size(), lines);
  std::vector<pollfd> waiting;
  for (const auto& socket : sockets_) waiting.push_back({socket.get(), POLLIN, 0});
  while (std::any_of(left.begin(), left.end(), [](int count) { return count > 0; })) {
    poll(waiting.data(), static_cast<nfds_t>(waiting.size()), -1);
    for (std::size_t i = 0; i < waiting.size(); ++i) {
      if (waiting[i].revents == 0) continue;
      const ssize_t got = read(waiting[i].fd, bytes, sizeof bytes);
      if (got <= 0) throw std::runtime_error("the server writes no more");
      left[i] -= static_cast<int>(std::count(bytes, bytes + got, '\n'));
    }
  }
}

}  // namespace vell::bench

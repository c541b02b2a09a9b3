#include "tests/support/fake_application.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "platform/socket.h"

namespace vell::tests {

using platform::Descriptor;

FakeApplication::FakeApplication(Script script, const std::string& socketPath)
    : script_(std::move(script)), socketPath_(socketPath), listener_(platform::openStreamSocket()) {
  const auto address = platform::socketAddress(socketPath);
  if (!address) throw std::runtime_error("socket path too long: " + socketPath);
  std::array<int, 2> stop{};
  if (::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0 ||
      ::listen(listener_.get(), 16) != 0 || ::pipe(stop.data()) != 0) {
    throw std::runtime_error("cannot serve " + socketPath);
  }
  stopRead_ = Descriptor(stop[0]);
  stopWrite_ = Descriptor(stop[1]);
  thread_ = std::thread([this] { serve(); });
}

FakeApplication::~FakeApplication() {
  stopWrite_ = Descriptor();
  thread_.join();
  ::unlink(socketPath_.c_str());
}

std::vector<std::string> FakeApplication::requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

FakeApplication::Reply FakeApplication::error(int code, const std::string& message) {
  return {R"({"id":1,"error":{"code":)" + std::to_string(code) + R"(,"message":")" + message + "\"}}\n"};
}

void FakeApplication::serve() {
  struct Client {
    Descriptor socket;
    std::string pending;
  };
  std::vector<Client> clients;
  for (;;) {
    std::vector<pollfd> watched = {{stopRead_.get(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
    for (const Client& client : clients) watched.push_back({client.socket.get(), POLLIN, 0});
    if (::poll(watched.data(), static_cast<nfds_t>(watched.size()), -1) < 0 || watched[0].revents != 0)
      return;
    for (std::size_t i = clients.size(); i-- > 0;) {
      if (watched[i + 2].revents == 0 || answer(clients[i].socket.get(), clients[i].pending)) continue;
      clients.erase(clients.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (watched[1].revents != 0) {
      clients.push_back({Descriptor(::accept(listener_.get(), nullptr, nullptr)), {}});
      platform::prepareSocket(clients.back().socket.get());
    }
  }
}

/// False when the connection is over.
bool FakeApplication::answer(int client, std::string& pending) {
  std::array<char, 65536> chunk{};
  const ssize_t count = ::read(client, chunk.data(), chunk.size());
  if (count <= 0) return false;
  pending.append(chunk.data(), static_cast<std::size_t>(count));
  for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
    const std::string request = pending.substr(0, end);
    pending.erase(0, end + 1);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      requests_.push_back(request);
    }
    const Reply reply = script_(request);
    if (!platform::writeAll(client, reply.bytes, platform::writeSocket)) return false;
    if (reply.close) return false;
  }
  return true;
}

}  // namespace vell::tests

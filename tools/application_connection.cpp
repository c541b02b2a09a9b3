#include "tools/application_connection.h"

#include <sys/socket.h>

#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/post.hpp>
#include <asio/write.hpp>
#include <cerrno>
#include <chrono>
#include <utility>

#include "ipc/vell_client.h"

namespace vell::tools {

using ipc::ClientError;

std::shared_ptr<ApplicationConnection> ApplicationConnection::open(asio::io_context& loop,
                                                                   const std::string& socketPath,
                                                                   Handler handler) {
  auto connection = std::make_shared<ApplicationConnection>(loop, socketPath, std::move(handler));
  asio::post(loop, [connection] { connection->connect(); });
  return connection;
}

ApplicationConnection::ApplicationConnection(asio::io_context& loop, std::string socketPath, Handler handler)
    : socket_(loop), retry_(loop), socketPath_(std::move(socketPath)), handler_(std::move(handler)) {}

void ApplicationConnection::connect() {
  if (!open_) return;
  try {
    connected(ipc::connectToApplication(socketPath_, /*blocking=*/false));
  } catch (const ClientError& error) {
    if (error.code() != EAGAIN) return end(error);
    // The application has more callers waiting than it accepts: it is busy and not gone.
    retry_.expires_after(std::chrono::milliseconds(20));
    retry_.async_wait([self = shared_from_this()](std::error_code) { self->connect(); });
  }
}

void ApplicationConnection::connected(platform::Descriptor descriptor) {
  socket_.assign(asio::local::stream_protocol(), descriptor.release());
  socket_.non_blocking(true);
  if (!waiting_.empty()) write();
  receive();
}

void ApplicationConnection::send(std::string_view bytes) {
  waiting_ += bytes;
  if (!socket_.is_open()) return;
  if (writing_.empty()) write();
}

// A request mostly fits into the socket at once; the loop writes what does not.
void ApplicationConnection::write() {
  std::error_code ignored;  // the loop will find it again
  const std::size_t written = socket_.write_some(asio::buffer(waiting_), ignored);
  if (written == waiting_.size()) return waiting_.clear();
  writing_.swap(waiting_);
  asio::async_write(socket_, asio::buffer(writing_) + written,
                    [self = shared_from_this()](std::error_code error, std::size_t) {
                      if (!self->open_) return;
                      if (error) return self->end(ClientError::writeFailed(error.value()));
                      self->writing_.clear();
                      if (!self->waiting_.empty()) self->write();
                    });
}

void ApplicationConnection::receive() {
  const auto room = arrived_.room();
  socket_.async_read_some(asio::buffer(room.data, room.size),
                          [self = shared_from_this()](std::error_code error, std::size_t count) {
                            if (!self->open_) return;
                            if (error) return self->finish();
                            self->processLines(count);
                            if (self->open_) self->receive();
                          });
}

void ApplicationConnection::processLines(std::size_t count) {
  processing_ = true;
  arrived_.commit(count);
  while (open_) {
    auto line = arrived_.next();
    if (!line) break;
    handler_.onLine(std::move(*line));
  }
  if (open_) handler_.onLinesProcessed();
  processing_ = false;
}

void ApplicationConnection::finish() {
  if (auto last = arrived_.finish()) handler_.onLine(std::move(*last));
  if (open_) end(ClientError::connectionClosed());
}

void ApplicationConnection::end(const ClientError& error) {
  const auto onEnd = std::move(handler_.onEnd);
  close();
  if (onEnd) onEnd(error);
}

void ApplicationConnection::close() {
  open_ = false;
  std::error_code ignored;
  socket_.close(ignored);
  retry_.cancel();
}

bool ApplicationConnection::peerIsGone() {
  if (!socket_.is_open() || processing_) return false;
  char byte;
  const ssize_t count = ::recv(socket_.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
}

}  // namespace vell::tools

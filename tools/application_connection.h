#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ipc/client_error.h"
#include "json/line_framing.h"
#include "json/text.h"
#include "platform/descriptor.h"

namespace vell::tools {

/// A connection to the application on the event loop: lines out, lines in, nothing ever waits.
class ApplicationConnection : public std::enable_shared_from_this<ApplicationConnection> {
 public:
  struct Handler {
    /// For each line, the last one also where it has no line feed.
    std::function<void(json::Text line)> onLine;
    /// After the last of the lines that came together.
    std::function<void()> onLinesProcessed = [] {};
    /// Called once, last, unless the connection was closed from here: it could not be made, or has ended.
    std::function<void(const ipc::ClientError& error)> onEnd;
  };

  /// Connects; the handler is never called before this returns.
  static std::shared_ptr<ApplicationConnection> open(asio::io_context& loop, const std::string& socketPath,
                                                     Handler handler);
  /// Use `open`.
  ApplicationConnection(asio::io_context& loop, std::string socketPath, Handler handler);

  void send(std::string_view bytes);
  void close();
  /// Whether the application has closed the connection, even if the loop has not noticed yet.
  bool peerIsGone();

 private:
  void connect();
  void connected(platform::Descriptor descriptor);
  void write();
  void receive();
  void processLines(std::size_t count);
  void finish();
  void end(const ipc::ClientError& error);

  asio::local::stream_protocol::socket socket_;
  asio::steady_timer retry_;
  std::string socketPath_;
  Handler handler_;
  json::LineFraming arrived_;
  std::string writing_;  // handed to the loop, untouched until it is written
  std::string waiting_;
  bool processing_ = false;  // whether lines are being handed over, so that the peer was there just now
  bool open_ = true;
};

}  // namespace vell::tools

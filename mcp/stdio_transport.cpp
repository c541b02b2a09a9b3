#include "mcp/stdio_transport.h"

#include <fcntl.h>

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <cerrno>
#include <vector>

#include "json/line_framing.h"

namespace vell::mcp {

namespace {

int checked(int result) {
  if (result == -1) throw std::system_error(errno, std::generic_category());
  return result;
}

/// Makes a descriptor non-blocking for as long as this lives.
class NonBlocking {
 public:
  /// Throws std::system_error.
  explicit NonBlocking(int descriptor)
      : descriptor_(descriptor), flags_(checked(::fcntl(descriptor, F_GETFL))) {
    checked(::fcntl(descriptor_, F_SETFL, flags_ | O_NONBLOCK));
  }
  ~NonBlocking() { ::fcntl(descriptor_, F_SETFL, flags_); }
  NonBlocking(const NonBlocking&) = delete;
  NonBlocking& operator=(const NonBlocking&) = delete;

 private:
  int descriptor_;
  int flags_;
};

/// Another descriptor of the same file, closed on exec. Throws std::system_error.
int duplicate(int descriptor) { return checked(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0)); }

/// asio's errors of the operating system as those of the standard library.
std::error_code standardError(std::error_code error) {
  const bool system = error.category() == asio::error::get_system_category();
  return system ? std::error_code(error.value(), std::generic_category()) : error;
}

}  // namespace

/// The state from connect to disconnect, shared with the callbacks of the event loop.
class StdioTransport::Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(asio::io_context& loop, int input, int output, const Logger& logger, Receiver receiver)
      : inputFlags_(std::in_place, input),
        outputFlags_(std::in_place, output),
        input_(loop, duplicate(input)),
        output_(loop, duplicate(output)),
        logger_(logger),
        receiver_(std::move(receiver)) {}

  void read() {
    const auto room = framing_.room();
    input_.async_read_some(asio::buffer(room.data, room.size),
                           [self = shared_from_this()](std::error_code error, std::size_t count) {
                             self->onRead(error, count);
                           });
  }

  void send(std::string message) {
    message += '\n';
    if (waiting_.empty()) {
      waiting_ = std::move(message);
    } else {
      waiting_ += message;
    }
    if (writing_.empty()) write();
  }

  void whenWritten(std::function<void()> callback) {
    if (writing_.empty() || !open_) return callback();
    drained_.push_back(std::move(callback));
  }

  void end(std::error_code error) {
    if (!open_) return;
    open_ = false;
    std::error_code ignored;
    input_.close(ignored);
    output_.close(ignored);
    outputFlags_.reset();  // in reverse order: both may be one file, whose original flags were read first
    inputFlags_.reset();
    runDrained();
    const auto onEnd = std::move(receiver_.onEnd);
    if (onEnd) onEnd(error);
  }

  bool isOpen() const { return open_; }
  std::size_t unwritten() const { return waiting_.size() + writing_.size() - written_; }

 private:
  void onRead(std::error_code error, std::size_t count) {
    if (!open_) return;
    if (error == asio::error::eof) return onEndOfInput();
    if (error) {
      logger_.log(LogLevel::error, "Read error occurred", {{"error", error.message()}});
      return onInputError(standardError(error));
    }
    framing_.commit(count);
    while (const auto line = framing_.next()) deliver(line->view());
    if (open_) read();
  }

  void deliver(std::string_view message) {
    if (message.ends_with('\r')) message.remove_suffix(1);
    if (message.empty() || !open_) return;
    logger_.log(LogLevel::debug, "Message received", {{"size", std::to_string(message.size())}});
    receiver_.onMessage(message);
  }

  void onEndOfInput() {
    logger_.log(LogLevel::debug, "EOF received");
    onInputError({});
  }

  // Output stays open: replies in flight are still to be written.
  void onInputError(std::error_code error) {
    const auto onEnd = std::move(receiver_.onEnd);
    receiver_.onEnd = nullptr;
    if (onEnd) onEnd(error);
  }

  void write() {
    writing_.swap(waiting_);
    writeOn();
  }

  void writeOn() {
    output_.async_write_some(asio::buffer(writing_) + written_,
                             [self = shared_from_this()](std::error_code error, std::size_t count) {
                               self->onWritten(error, count);
                             });
  }

  void onWritten(std::error_code error, std::size_t count) {
    if (!open_) return;
    if (error) return end(standardError(error));
    written_ += count;
    if (written_ < writing_.size()) return writeOn();
    writing_.clear();
    written_ = 0;
    if (writing_.capacity() > keptCapacity) writing_.shrink_to_fit();
    if (!waiting_.empty()) return write();
    runDrained();
  }

  void runDrained() {
    const auto callbacks = std::exchange(drained_, {});
    for (const auto& callback : callbacks) callback();
  }

  static constexpr std::size_t keptCapacity = 1 << 16;

  std::optional<NonBlocking> inputFlags_;
  std::optional<NonBlocking> outputFlags_;
  asio::posix::stream_descriptor input_;
  asio::posix::stream_descriptor output_;
  Logger logger_;
  Receiver receiver_;
  json::LineFraming framing_;
  std::size_t written_ = 0;  // of what follows
  std::string writing_;      // handed to the loop, untouched until it is written
  std::string waiting_;
  std::vector<std::function<void()>> drained_;
  bool open_ = true;
};

StdioTransport::StdioTransport(asio::io_context& loop, int input, int output, Logger logger)
    : loop_(loop), input_(input), output_(output), logger_(std::move(logger)) {}

StdioTransport::~StdioTransport() { disconnect(); }

const Logger& StdioTransport::logger() const { return logger_; }

void StdioTransport::connect(Receiver receiver) {
  if (connection_) return;
  connection_ = std::make_shared<Connection>(loop_, input_, output_, logger_, std::move(receiver));
  logger_.log(LogLevel::debug, "Transport connected successfully");
  connection_->read();
}

void StdioTransport::disconnect() {
  if (!connection_) return;
  const auto connection = std::exchange(connection_, nullptr);
  connection->end({});
  logger_.log(LogLevel::debug, "Transport disconnected");
}

void StdioTransport::send(std::string message) {
  if (!connection_ || !connection_->isOpen()) {
    throw std::system_error(std::make_error_code(std::errc::not_connected));
  }
  connection_->send(std::move(message));
}

void StdioTransport::whenWritten(std::function<void()> callback) {
  if (!connection_) return callback();
  connection_->whenWritten(std::move(callback));
}

std::size_t StdioTransport::unwritten() const { return connection_ ? connection_->unwritten() : 0; }

}  // namespace vell::mcp

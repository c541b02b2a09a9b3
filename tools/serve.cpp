#include "tools/serve.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <csignal>
#include <memory>
#include <system_error>

#include "mcp/mcp_server.h"
#include "mcp/stdio_transport.h"
#include "platform/allocator.h"
#include "platform/container.h"
#include "tools/all_tools.h"
#include "tools/documents_subscription.h"
#include "tools/resources.h"

namespace vell::tools {

namespace {

/// How long to wait, at the end of input, for the next of the replies in flight. Hosts kill a server that
/// takes much longer.
constexpr std::chrono::milliseconds longestWaitForReply{1900};

/// What a result of a megabyte takes on its way.
constexpr std::size_t keptMemory = 16 << 20;

/// The parts of the server around one event loop.
class Program {
 public:
  Program(const std::string& version, int input, int output);

  /// Runs until the session has ended. Returns the signal that ended it, 0 for none.
  int run();

 private:
  void watchSignals();
  void onInputEnded(std::error_code error);
  void waitForReplies();
  void stop();

  asio::io_context loop_{1};
  VellIPC application_{loop_, platform::applicationSocketPath()};
  Openings openings_{loop_, application_};
  Services services_{application_, openings_};
  mcp::MCPServer server_;
  DocumentsSubscription documents_{
      loop_, platform::applicationSocketPath(),
      [this](const outlines::OutlineChanges& changes) { applyChanges(server_, services_, changes); }};
  mcp::StdioTransport transport_;
  std::shared_ptr<mcp::Server> session_;
  asio::signal_set signals_{loop_, SIGTERM, SIGINT, SIGHUP};
  asio::steady_timer replyTimer_{loop_};
  std::error_code failure_;
  int signal_ = 0;
};

Program::Program(const std::string& version, int input, int output)
    : server_({.name = "vell",
               .version = version,
               .title = "Vell",
               .description = "Drive the Vell outliner: read outlines and rows, mutate them."}),
      transport_(loop_, input, output) {
  registerTools(server_, services_);
  registerResources(server_, services_);
}

int Program::run() {
  watchSignals();
  documents_.start();
  session_ = server_.run(transport_);
  session_->onInputEnded([this](std::error_code error) { onInputEnded(error); });
  loop_.run();
  if (failure_) throw std::system_error(failure_, "The connection to the MCP client failed");
  return signal_;
}

void Program::watchSignals() {
  signals_.async_wait([this](std::error_code cancelled, int signal) {
    if (cancelled) return;
    signal_ = signal;
    stop();
  });
}

// A client that no longer reads has left: that is an end in order.
void Program::onInputEnded(std::error_code error) {
  if (error && error != std::errc::broken_pipe && error != std::errc::connection_reset) failure_ = error;
  if (error) return stop();
  session_->whenIdle([this] { stop(); });
  waitForReplies();
}

void Program::waitForReplies() {
  replyTimer_.expires_after(longestWaitForReply);
  replyTimer_.async_wait([this, before = session_->unfinished()](std::error_code cancelled) {
    if (cancelled) return;
    session_->unfinished() == before ? stop() : waitForReplies();
  });
}

void Program::stop() {
  documents_.stop();
  session_->stop();
  loop_.stop();
}

}  // namespace

void serveMCP(const std::string& version, int input, int output) {
  std::signal(SIGPIPE, [](int) {});  // unlike SIG_IGN, not handed on to programs started from here
  platform::keepFreedMemory(keptMemory);
  const int signal = Program(version, input, output).run();
  if (signal != 0) std::raise(signal);
}

}  // namespace vell::tools

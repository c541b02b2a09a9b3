#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "ipc/message.h"
#include "json/text.h"
#include "tools/application_connection.h"

namespace vell::tools {

/// An answer, or what failed: ipc::VellIPCError, json::ParseError for a line that is not JSON, or another
/// error where the call was cancelled.
using Outcome = std::variant<ipc::Answer, std::exception_ptr>;
using OutcomeHandler = std::function<void(Outcome outcome)>;

/// The one connection on which `vell mcp` calls the application: one call at a time, in the order of their
/// arrival. It is made by the first call, and made anew by the next one after a transport failure and after
/// the cancelling of a call that was sent.
class VellIPC {
 public:
  using Ticket = std::uint64_t;

  VellIPC(asio::io_context& loop, std::string socketPath);
  ~VellIPC();
  VellIPC(const VellIPC&) = delete;
  VellIPC& operator=(const VellIPC&) = delete;

  /// `params` is JSON text; empty sends none. The handler is called once, never before this returns.
  Ticket call(std::string method, std::string params, OutcomeHandler handler);
  /// The same for one of the records of ipc/methods.h.
  template <class Record>
  Ticket call(const Record& record, OutcomeHandler handler) {
    return call(Record::method, record.toJson(), std::move(handler));
  }
  /// The call's outcome is an error at once. One that waits its turn is never sent; one that was sent is
  /// ended by closing the connection, and the next call goes over a new one.
  void cancel(Ticket ticket);

 private:
  struct Call {
    Ticket ticket;
    std::string method;
    std::string params;
    OutcomeHandler handler;
  };

  void disconnect();
  void sendNext();
  void ensureConnected();
  void onLine(json::Text line);
  void onLinesProcessed();
  void onEnd(const ipc::ClientError& error);
  void finish(Outcome outcome);

  asio::io_context& loop_;
  std::string socketPath_;
  std::shared_ptr<ApplicationConnection> connection_;
  std::int64_t nextId_ = 1;  // of this connection
  Ticket nextTicket_ = 1;
  std::deque<Call> calls_;
  bool inFlight_ = false;           // whether the first of them is sent
  std::optional<Outcome> outcome_;  // of that call, until the lines that came with it are processed
};

}  // namespace vell::tools

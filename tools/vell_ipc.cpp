#include "tools/vell_ipc.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "ipc/message.h"

namespace vell::tools {

VellIPC::VellIPC(asio::io_context& loop, std::string socketPath)
    : loop_(loop), socketPath_(std::move(socketPath)) {}

VellIPC::~VellIPC() {
  if (connection_) connection_->close();
}

VellIPC::Ticket VellIPC::call(std::string method, std::string params, OutcomeHandler handler) {
  calls_.push_back({nextTicket_, std::move(method), std::move(params), std::move(handler)});
  sendNext();
  return nextTicket_++;
}

void VellIPC::cancel(Ticket ticket) {
  const auto call = std::find_if(calls_.begin(), calls_.end(),
                                 [ticket](const Call& each) { return each.ticket == ticket; });
  if (call == calls_.end()) return;
  const bool sent = inFlight_ && call == calls_.begin();
  const OutcomeHandler handler = std::move(call->handler);
  calls_.erase(call);
  if (sent) disconnect();
  handler(std::make_exception_ptr(std::runtime_error("The call was cancelled")));
}

// The application gives up what it does for a connection that is closed.
void VellIPC::disconnect() {
  std::exchange(connection_, nullptr)->close();
  outcome_.reset();
  inFlight_ = false;
  sendNext();
}

void VellIPC::sendNext() {
  if (inFlight_ || calls_.empty()) return;
  inFlight_ = true;
  ensureConnected();
  connection_->send(ipc::requestLine(nextId_++, calls_.front().method, calls_.front().params));
}

void VellIPC::ensureConnected() {
  if (connection_ && connection_->peerIsGone()) std::exchange(connection_, nullptr)->close();
  if (connection_) return;
  nextId_ = 1;
  connection_ =
      ApplicationConnection::open(loop_, socketPath_,
                                  {.onLine = [this](json::Text line) { onLine(std::move(line)); },
                                   .onLinesProcessed = [this] { onLinesProcessed(); },
                                   .onEnd = [this](const ipc::ClientError& error) { onEnd(error); }});
}

void VellIPC::onLine(json::Text line) {
  if (!inFlight_ || outcome_) return;
  try {
    if (auto answer = ipc::Answer::parse(std::move(line))) outcome_ = std::move(*answer);
  } catch (const ipc::ClientError& error) {
    outcome_ = std::make_exception_ptr(ipc::VellIPCError(error));
  } catch (const std::exception&) {
    outcome_ = std::current_exception();
  }
}

// Only now: lines that come behind an answer are dropped.
void VellIPC::onLinesProcessed() {
  if (outcome_) finish(*std::exchange(outcome_, std::nullopt));
}

void VellIPC::onEnd(const ipc::ClientError& error) {
  connection_ = nullptr;
  if (!inFlight_) return;
  auto outcome = std::exchange(outcome_, std::nullopt);
  finish(outcome ? std::move(*outcome) : std::make_exception_ptr(ipc::VellIPCError(error)));
}

// The next call is sent first, so that the application works on it while this answer is passed on.
void VellIPC::finish(Outcome outcome) {
  const OutcomeHandler handler = std::move(calls_.front().handler);
  calls_.pop_front();
  inFlight_ = false;
  sendNext();
  handler(std::move(outcome));
}

}  // namespace vell::tools

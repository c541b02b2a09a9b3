#include "tools/application_link.h"

#include <algorithm>
#include <utility>

#include "ipc/message.h"

namespace vell::tools {

ApplicationLink::ApplicationLink(asio::io_context& loop, std::string socketPath)
    : loop_(loop), socketPath_(std::move(socketPath)) {}

ApplicationLink::~ApplicationLink() {
  if (connection_) connection_->close();
}

ApplicationLink::Ticket ApplicationLink::call(std::string method, std::string params,
                                              OutcomeHandler handler) {
  calls_.push_back({nextTicket_, std::move(method), std::move(params), std::move(handler)});
  proceed();
  return nextTicket_++;
}

void ApplicationLink::withdraw(Ticket ticket) {
  const auto call = std::find_if(calls_.begin(), calls_.end(),
                                 [ticket](const Call& each) { return each.ticket == ticket; });
  if (call == calls_.end()) return;
  if (inFlight_ && call == calls_.begin()) {
    call->handler = nullptr;
  } else {
    calls_.erase(call);
  }
}

void ApplicationLink::proceed() {
  if (inFlight_ || calls_.empty()) return;
  inFlight_ = true;
  ensureConnected();
  connection_->send(ipc::requestLine(nextId_++, calls_.front().method, calls_.front().params));
}

void ApplicationLink::ensureConnected() {
  if (connection_ && connection_->peerIsGone()) std::exchange(connection_, nullptr)->close();
  if (connection_) return;
  nextId_ = 1;
  connection_ =
      ApplicationConnection::open(loop_, socketPath_,
                                  {.onLine = [this](json::Text line) { onLine(std::move(line)); },
                                   .onLinesTakenIn = [this] { onLinesTakenIn(); },
                                   .onEnd = [this](const ipc::ClientError& error) { onEnd(error); }});
}

void ApplicationLink::onLine(json::Text line) {
  if (!inFlight_ || outcome_) return;
  try {
    if (auto answer = ipc::Answer::parse(std::move(line))) outcome_ = std::move(*answer);
  } catch (const std::exception&) {
    outcome_ = std::current_exception();
  }
}

// Not before: the lines behind an answer belong to nobody.
void ApplicationLink::onLinesTakenIn() {
  if (outcome_) finish(*std::exchange(outcome_, std::nullopt));
}

void ApplicationLink::onEnd(const ipc::ClientError& error) {
  connection_ = nullptr;
  if (!inFlight_) return;
  auto outcome = std::exchange(outcome_, std::nullopt);
  finish(outcome ? std::move(*outcome) : std::make_exception_ptr(error));
}

// The next call goes out first: the application works on it while this answer is passed on.
void ApplicationLink::finish(Outcome outcome) {
  const OutcomeHandler handler = std::move(calls_.front().handler);
  calls_.pop_front();
  inFlight_ = false;
  proceed();
  if (handler) handler(std::move(outcome));
}

}  // namespace vell::tools

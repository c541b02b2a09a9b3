#include "tools/application_link.h"

#include <algorithm>
#include <asio/post.hpp>
#include <utility>

#include "ipc/message.h"

namespace vell::tools {

ApplicationLink::ApplicationLink(asio::io_context& loop, std::string socketPath)
    : loop_(loop), socketPath_(std::move(socketPath)) {}

ApplicationLink::~ApplicationLink() {
  *alive_ = false;
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
  if (inFlight_ || proceeding_ || calls_.empty()) return;
  inFlight_ = true;
  ensureConnected();
  connection_->send(ipc::requestLine(nextId_++, calls_.front().method, calls_.front().params));
}

void ApplicationLink::ensureConnected() {
  if (connection_ && connection_->peerIsGone()) std::exchange(connection_, nullptr)->close();
  if (connection_) return;
  nextId_ = 1;
  connection_ = ApplicationConnection::open(loop_, socketPath_,
                                            {[this](json::Text line) { onLine(std::move(line)); },
                                             [this](const ipc::ClientError& error) { onEnd(error); }});
}

void ApplicationLink::onLine(json::Text line) {
  if (!inFlight_) return;
  try {
    if (auto answer = ipc::Answer::parse(std::move(line))) finish(std::move(*answer));
  } catch (const std::exception&) {
    finish(std::current_exception());
  }
}

void ApplicationLink::onEnd(const ipc::ClientError& error) {
  connection_ = nullptr;
  if (inFlight_) finish(std::make_exception_ptr(error));
}

// The next call waits until the lines behind this answer are taken in: they belong to nobody.
void ApplicationLink::finish(Outcome outcome) {
  const OutcomeHandler handler = std::move(calls_.front().handler);
  calls_.pop_front();
  inFlight_ = false;
  if (!std::exchange(proceeding_, true)) {
    asio::post(loop_, [this, alive = alive_] {
      if (!*alive) return;
      proceeding_ = false;
      proceed();
    });
  }
  if (handler) handler(std::move(outcome));
}

}  // namespace vell::tools

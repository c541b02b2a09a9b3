#include "tools/documents_subscription.h"

#include <utility>

#include "ipc/message.h"
#include "ipc/methods.h"
#include "ipc/outline_summary.h"

namespace vell::tools {

DocumentsSubscription::DocumentsSubscription(asio::io_context& loop, std::string socketPath,
                                             ChangeHandler onChange)
    : loop_(loop), socketPath_(std::move(socketPath)), onChange_(std::move(onChange)), retry_(loop) {}

void DocumentsSubscription::start() {
  using ipc::DocumentsObserve;
  connection_ = ApplicationConnection::open(loop_, socketPath_,
                                            {.onLine = [this](json::Text line) { onLine(std::move(line)); },
                                             .onEnd = [this](const ipc::ClientError&) { onEnd(); }});
  connection_->send(ipc::requestLine(1, DocumentsObserve::method, DocumentsObserve().toJson()));
}

void DocumentsSubscription::stop() {
  retry_.cancel();
  if (const auto connection = std::exchange(connection_, nullptr)) connection->close();
}

// A line that cannot be understood ends this subscription; the next one begins with a whole list.
void DocumentsSubscription::onLine(json::Text line) {
  try {
    const auto event = ipc::Notification::parse(std::move(line));
    if (!event) return;
    if (event->closesSubscription()) {
      reconcile({});
      return subscribeAgain();
    }
    const auto data = event->params().find("data");
    if (!data) return;
    reconcile(ipc::decodeOutlineSummaries(*data));
    followed_ = true;
    delay_.reset();
  } catch (const std::exception&) {
    onEnd();
  }
}

void DocumentsSubscription::onEnd() {
  if (!followed_) reconcile({});
  subscribeAgain();
}

void DocumentsSubscription::subscribeAgain() {
  stop();
  followed_ = false;
  retry_.expires_after(delay_.next());
  retry_.async_wait([this](std::error_code cancelled) {
    if (!cancelled) start();
  });
}

}  // namespace vell::tools

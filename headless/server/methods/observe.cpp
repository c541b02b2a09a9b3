#include "headless/editing/problem.h"
#include "headless/server/answers.h"
#include "headless/server/methods.h"
#include "headless/server/subscriptions.h"

namespace vell::headless::methods {
namespace {

const Subscriber& subscriber(const Call& call) {
  if (call.subscriber == nullptr) throw Problem("Only a client of the socket can observe");
  return *call.subscriber;
}

}  // namespace

std::string outlineObserve(const Call& call) {
  const OutlineView view = viewParams(call.params);
  const std::string path = call.params.nonEmpty("path", "an outline path").value_or("//*");
  const auto& [subscriptions, client] = subscriber(call);
  OpenOutline& opened = call.application.outline(call.params.string("outline"));
  return memberAnswer("subscriptionId", subscriptions.observeOutline(client, opened, path, view));
}

std::string documentsObserve(const Call& call) {
  const auto& [subscriptions, client] = subscriber(call);
  return memberAnswer("subscriptionId", subscriptions.observeDocuments(client));
}

}  // namespace vell::headless::methods

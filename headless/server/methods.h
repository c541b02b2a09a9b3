#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "headless/access.h"
#include "headless/server/params.h"
#include "headless/storage/application.h"

namespace vell::headless {

class Subscriptions;

/// The client that a request came from, as one that may observe.
struct Subscriber {
  Subscriptions& subscriptions;
  std::uint64_t client;
};

/// What a method may work with while it answers one request.
struct Call {
  Application& application;
  const Params& params;
  const Subscriber* subscriber = nullptr;   ///< null where no client can be notified
  History::Group group = History::noGroup;  ///< of the changes that it makes

  /// Changes the outline in one transaction and returns what `work` answers. That runs beside the
  /// application and must touch nothing but the outline with its editor.
  template <class Work>
  std::string change(OpenOutline& opened, Work work) const {
    Transaction transaction = application.begin(opened, group);
    const RowRefs refs = opened.refs();
    std::string answer;
    beside([&] { answer = work(transaction, refs); });
    transaction.commit();
    return answer;
  }
};

/// Answers one request with the JSON text of its result. Failures are thrown: RpcError for bad params,
/// Problem for what the application cannot do.
using Method = std::string (*)(const Call&);

/// One function a method, declared here for the table; docs/protocol.md has their params and results.
namespace methods {

std::string applicationOpen(const Call& call);
std::string headlessStatus(const Call& call);

std::string outlineList(const Call& call);
std::string outlineGet(const Call& call);
std::string outlineFindByPath(const Call& call);
std::string outlineFindByPersistentId(const Call& call);
std::string outlineBringToFront(const Call& call);
std::string outlineNew(const Call& call);
std::string outlineNewContent(const Call& call);
std::string outlineClose(const Call& call);

std::string outlineObserve(const Call& call);
std::string documentsObserve(const Call& call);

std::string rowCreate(const Call& call);
std::string rowCreateMany(const Call& call);
std::string rowUpdate(const Call& call);
std::string rowMove(const Call& call);
std::string rowDelete(const Call& call);

std::string editorList(const Call& call);
std::string editorGet(const Call& call);
std::string editorUpdate(const Call& call);

std::string commandList(const Call& call);
std::string commandPerform(const Call& call);

std::string scriptEvaluate(const Call& call);

}  // namespace methods
}  // namespace vell::headless

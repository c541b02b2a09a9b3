#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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
  const Subscriber* subscriber = nullptr;  ///< null where no client can be notified
};

/// Answers one request with the JSON text of its result. Failures are thrown: RpcError for bad params,
/// Problem for what the application cannot do.
using Handler = std::string (*)(const Call&);

/// The handler of that method; throws RpcError(methodNotFound) for names that are not served.
Handler handlerOf(std::string_view method);

}  // namespace vell::headless

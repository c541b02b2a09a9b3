#include "headless/server/dispatch.h"

#include <new>

#include "headless/editing/problem.h"
#include "headless/server/method.h"
#include "headless/server/request.h"

namespace vell::headless {
namespace {

/// Results below this travel in one piece with what stands around them.
constexpr std::size_t joinedLimit = 64 << 10;

void sendResult(Client& client, std::string_view id, std::string result) {
  std::string head = resultHead(id);
  if (result.size() < joinedLimit) return client.send(head.append(result).append("}\n"));
  client.send(std::move(head));
  client.send(std::move(result));
  client.send("}\n");
}

/// The one place where failures become error answers.
std::string errorFor(std::string_view id, std::exception_ptr failure) {
  try {
    std::rethrow_exception(std::move(failure));
  } catch (const RpcError& error) {
    return errorLine(id, error.code(), error.what());
  } catch (const Problem& problem) {
    return errorLine(id, RpcCode::application, problem.what());
  } catch (const std::bad_alloc&) {
    return errorLine(id, RpcCode::internalError, "Out of memory for this request.");
  } catch (const std::exception& error) {
    return errorLine(id, RpcCode::internalError, error.what());
  }
}

bool blank(std::string_view line) { return line.find_first_not_of(" \t\r") == std::string_view::npos; }

void carryOut(const Request& request, Application& application, Subscriptions& subscriptions,
              Client& client) {
  const Handler handler = handlerOf(request.method());
  const Params params = request.params();
  const Subscriber subscriber{subscriptions, client.id()};
  std::string result = handler({application, params, &subscriber});
  if (request.wantsAnswer()) sendResult(client, request.id(), std::move(result));
}

}  // namespace

void dispatch(std::string_view line, Application& application, Subscriptions& subscriptions, Client& client) {
  if (blank(line)) return;
  std::optional<Request> request;
  try {
    request.emplace(line);
    carryOut(*request, application, subscriptions, client);
  } catch (...) {
    if (request && !request->wantsAnswer()) return;
    client.send(errorFor(request ? request->id() : "null", std::current_exception()));
  }
}

}  // namespace vell::headless

#include "tools/calls.h"

#include <utility>
#include <variant>

#include "ipc/client_error.h"
#include "tools/answer_limit.h"

namespace vell::tools {

static bool meansNotRunning(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const ipc::VellIPCError& error) {
    return error.underlying.meansNotRunning();
  } catch (const std::exception&) {
    return false;
  }
}

std::string textOf(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    return shortened(error.what());
  }
}

static void answer(const mcp::ToolCallPtr& call, const Outcome& outcome, WhenNotRunning whenNotRunning) {
  if (const auto* answer = std::get_if<ipc::Answer>(&outcome)) {
    std::string text = answer->bytes();
    if (auto why = refusal(text, *answer)) return call->fail(std::move(*why));
    return call->answerText(std::move(text));
  }
  const std::exception_ptr failure = std::get<std::exception_ptr>(outcome);
  if (whenNotRunning == WhenNotRunning::emptyList && meansNotRunning(failure)) return call->answerText("[]");
  call->fail(textOf(failure));
}

void forward(const Services& services, std::string method, std::string params, const mcp::ToolCallPtr& call,
             WhenNotRunning whenNotRunning) {
  const auto ticket = services.application.call(
      std::move(method), std::move(params),
      [call, whenNotRunning](const Outcome& outcome) { answer(call, outcome, whenNotRunning); });
  call->request().onCancelled([&application = services.application, ticket] { application.cancel(ticket); });
}

void open(const Services& services, Openings::Work work, const mcp::ToolCallPtr& call) {
  const auto onDone = [call](const Outcome& outcome) { answer(call, outcome, WhenNotRunning::error); };
  const auto onWait = [call](double waited, double timeout) {
    call->request().reportProgress(waited, timeout, "Waiting for Vell to open the outline");
  };
  const auto ticket = services.openings.start(std::move(work), {onDone, onWait});
  call->request().onCancelled([&openings = services.openings, ticket] { openings.cancel(ticket); });
}

}  // namespace vell::tools

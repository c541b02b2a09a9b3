#include "headless/server/dispatch.h"

#include <algorithm>
#include <array>
#include <new>

#include "headless/editing/problem.h"
#include "headless/server/request.h"

namespace vell::headless {
namespace {

struct NamedMethod {
  std::string_view name;
  Method method;
};

// clang-format off
constexpr std::array table = {
    NamedMethod{"application.open",            methods::applicationOpen},
    NamedMethod{"command.list",                methods::commandList},
    NamedMethod{"command.perform",             methods::commandPerform},
    NamedMethod{"documents.observe",           methods::documentsObserve},
    NamedMethod{"editor.get",                  methods::editorGet},
    NamedMethod{"editor.list",                 methods::editorList},
    NamedMethod{"editor.update",               methods::editorUpdate},
    NamedMethod{"outline.bringToFront",        methods::outlineBringToFront},
    NamedMethod{"outline.close",               methods::outlineClose},
    NamedMethod{"outline.findByPath",          methods::outlineFindByPath},
    NamedMethod{"outline.findByPersistentId",  methods::outlineFindByPersistentId},
    NamedMethod{"outline.get",                 methods::outlineGet},
    NamedMethod{"outline.list",                methods::outlineList},
    NamedMethod{"outline.new",                 methods::outlineNew},
    NamedMethod{"outline.newContent",          methods::outlineNewContent},
    NamedMethod{"outline.observe",             methods::outlineObserve},
    NamedMethod{"row.create",                  methods::rowCreate},
    NamedMethod{"row.createMany",              methods::rowCreateMany},
    NamedMethod{"row.delete",                  methods::rowDelete},
    NamedMethod{"row.move",                    methods::rowMove},
    NamedMethod{"row.update",                  methods::rowUpdate},
    NamedMethod{"script.evaluate",             methods::scriptEvaluate},
};
// clang-format on

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

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == std::string_view::npos; }

std::string answer(const Request& request, Application& application, const Subscriber& subscriber) {
  const Method method = findMethod(request.method());
  const Params params = request.params();
  return resultLine(request.id(), method({application, params, &subscriber}));
}

}  // namespace

Method findMethod(std::string_view name) {
  const auto* found =
      std::find_if(table.begin(), table.end(), [&](const NamedMethod& each) { return each.name == name; });
  if (found != table.end()) return found->method;
  std::string names;
  for (const NamedMethod& each : table) names.append(names.empty() ? "" : ", ").append(each.name);
  throw RpcError(RpcCode::methodNotFound,
                 "Unknown method \"" + std::string(name) + "\" (served: " + names + ")");
}

std::string dispatch(json::Text line, Application& application, const Subscriber& subscriber) {
  if (isBlank(line.view())) return {};
  std::optional<Request> request;
  std::string answered;
  try {
    request.emplace(std::move(line));
    answered = answer(*request, application, subscriber);
  } catch (...) {
    answered = errorFor(request ? request->id() : "null", std::current_exception());
  }
  return !request || request->wantsAnswer() ? answered : std::string();
}

}  // namespace vell::headless

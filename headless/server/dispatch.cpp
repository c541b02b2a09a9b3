#include "headless/server/dispatch.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/server/outline_use.h"
#include "headless/server/request.h"

namespace vell::headless {
namespace {

struct NamedMethod {
  std::string_view name;
  Method method;
  std::optional<Use> use;  ///< what it does with an outline
  bool isLong = false;     ///< whatever it is asked for
};

/// Rows that are read and written within a few milliseconds, and a line of request that is.
constexpr std::size_t quicklyRead = 2'000;
constexpr std::size_t quicklyParsed = 16 << 10;

constexpr std::nullopt_t none = std::nullopt;
constexpr Use reads = Use::reading;
constexpr Use changes = Use::changing;

// clang-format off
constexpr std::array table = {
    NamedMethod{"application.open",           methods::applicationOpen,           none, true},
    NamedMethod{"command.list",               methods::commandList,               none},
    NamedMethod{"command.perform",            methods::commandPerform,            changes},
    NamedMethod{"documents.observe",          methods::documentsObserve,          none},
    NamedMethod{"editor.get",                 methods::editorGet,                 reads},
    NamedMethod{"editor.list",                methods::editorList,                none},
    NamedMethod{"editor.update",              methods::editorUpdate,              changes},
    NamedMethod{"headless.status",            methods::headlessStatus,            none},
    NamedMethod{"outline.bringToFront",       methods::outlineBringToFront,       none},
    NamedMethod{"outline.close",              methods::outlineClose,              changes, true},
    NamedMethod{"outline.findByPath",         methods::outlineFindByPath,         none},
    NamedMethod{"outline.findByPersistentId", methods::outlineFindByPersistentId, none},
    NamedMethod{"outline.get",                methods::outlineGet,                reads},
    NamedMethod{"outline.list",               methods::outlineList,               none},
    NamedMethod{"outline.new",                methods::outlineNew,                none, true},
    NamedMethod{"outline.newContent",         methods::outlineNewContent,         none},
    NamedMethod{"outline.observe",            methods::outlineObserve,            reads},
    NamedMethod{"row.create",                 methods::rowCreate,                 changes},
    NamedMethod{"row.createMany",             methods::rowCreateMany,             changes},
    NamedMethod{"row.delete",                 methods::rowDelete,                 changes},
    NamedMethod{"row.move",                   methods::rowMove,                   changes},
    NamedMethod{"row.update",                 methods::rowUpdate,                 changes},
    NamedMethod{"script.evaluate",            methods::scriptEvaluate,            none, true},
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

const NamedMethod& methodNamed(std::string_view name) {
  const auto* found =
      std::find_if(table.begin(), table.end(), [&](const NamedMethod& each) { return each.name == name; });
  if (found != table.end()) return *found;
  std::string names;
  for (const NamedMethod& each : table) names.append(names.empty() ? "" : ", ").append(each.name);
  throw RpcError(RpcCode::methodNotFound,
                 "Unknown method \"" + std::string(name) + "\" (served: " + names + ")");
}

/// The outline that a call is about; null where there is none, as its method will say.
OpenOutline* subject(const Application& application, const Params& params) {
  if (const auto id = params.string("editor")) return application.findByEditor(*id);
  if (const auto id = params.string("outline")) return application.findByPersistentId(*id);
  return application.outlines().empty() ? nullptr : application.outlines().front().get();
}

}  // namespace

std::string carryOut(std::string_view name, const Call& call) {
  const NamedMethod& method = methodNamed(name);
  return method.use ? carryOut(method.method, *method.use, call) : method.method(call);
}

std::string carryOut(Method method, Use use, const Call& call) {
  bool isFresh = false;
  const auto find = [&] {
    OpenOutline* opened = subject(call.application, call.params);
    if (opened != nullptr && !std::exchange(isFresh, true)) call.application.refresh(*opened);
    return opened;
  };
  const auto inUse = waitForOutline(find, use);
  return method(call);
}

Incoming::Incoming(json::Text line) : line_(std::move(line)) {
  if (line_.view().size() <= quicklyParsed) parse();
}

void Incoming::parse() {
  json::Text line = std::exchange(line_, {});
  if (isBlank(line.view())) return;
  try {
    request_.emplace(std::move(line));
  } catch (...) {
    refusal_ = errorFor("null", std::current_exception());
  }
}

bool Incoming::mayBeScript() const {
  if (!isParsed()) return true;
  try {
    return request_ && methodNamed(request_->method()).method == methods::scriptEvaluate;
  } catch (const RpcError&) {
    return false;
  }
}

Incoming::Turn Incoming::turn(Application& application, bool threadIsFree) {
  const Turn ifLong = threadIsFree ? Turn::beside : Turn::later;
  if (!isParsed()) return ifLong;
  if (!request_) return Turn::now;
  try {
    const NamedMethod& method = methodNamed(request_->method());
    const Params params = request_->params();
    OpenOutline* opened = method.use ? subject(application, params) : nullptr;
    const bool isCostly = method.isLong || (opened != nullptr && params.mentionPath());
    if (isCostly && !threadIsFree) return Turn::later;
    if (opened != nullptr && !enter(application, *opened, *method.use)) return Turn::later;
    const bool isLong = isCostly || (opened != nullptr && opened->outline().heldRows() > quicklyRead);
    if (isLong && !threadIsFree) {
      use_.reset();
      return Turn::later;
    }
    return isLong ? Turn::beside : Turn::now;
  } catch (const std::exception&) {
    return Turn::now;  // its answer will be an error
  }
}

bool Incoming::enter(Application& application, OpenOutline& opened, Use use) {
  if (use_ && use_->isOf(opened)) return true;
  use_.reset();
  wait_.reset();
  application.refresh(opened);
  const bool admitted = opened.users()->admits(use);
  admitted ? void(use_.emplace(opened, use)) : void(wait_.emplace(opened, use));
  return admitted;
}

std::string Incoming::refusal(std::string_view reason) {
  if (!isParsed()) parse();
  return request_ && request_->wantsAnswer() ? errorLine(request_->id(), RpcCode::application, reason)
                                             : std::string();
}

std::optional<std::string> Incoming::answer(Application& application, const Subscriber& subscriber) {
  if (!isParsed()) beside([this] { parse(); });
  if (!request_) return refusal_;
  std::string answered;
  try {
    auto text = result(application, subscriber);
    if (!text) return std::nullopt;
    beside([&] { answered = resultLine(request_->id(), std::move(*text)); });
  } catch (const Abandoned&) {
    throw;
  } catch (...) {
    answered = errorFor(request_->id(), std::current_exception());
  }
  if (!request_->wantsAnswer()) answered.clear();
  return answered;
}

std::optional<std::string> Incoming::result(Application& application, const Subscriber& subscriber) {
  const NamedMethod& method = methodNamed(request_->method());
  const Params params = request_->params();
  OpenOutline* opened = method.use ? subject(application, params) : nullptr;
  if (opened != nullptr && !enter(application, *opened, *method.use)) return std::nullopt;
  const std::optional<OutlineUse> use = std::exchange(use_, std::nullopt);
  return method.method({application, params, &subscriber});
}

}  // namespace vell::headless

#include <algorithm>
#include <array>

#include "headless/server/methods.h"
#include "headless/server/rpc_error.h"

namespace vell::headless {
namespace {

struct Method {
  std::string_view name;
  Handler handler;
};

// clang-format off
constexpr std::array table = {
    Method{"application.open",            methods::applicationOpen},
    Method{"command.list",                methods::commandList},
    Method{"command.perform",             methods::commandPerform},
    Method{"documents.observe",          methods::documentsObserve},
    Method{"editor.get",                  methods::editorGet},
    Method{"editor.list",                 methods::editorList},
    Method{"editor.update",               methods::editorUpdate},
    Method{"outline.bringToFront",        methods::outlineBringToFront},
    Method{"outline.close",               methods::outlineClose},
    Method{"outline.findByPath",          methods::outlineFindByPath},
    Method{"outline.findByPersistentId",  methods::outlineFindByPersistentId},
    Method{"outline.get",                 methods::outlineGet},
    Method{"outline.list",                methods::outlineList},
    Method{"outline.new",                 methods::outlineNew},
    Method{"outline.newContent",          methods::outlineNewContent},
    Method{"outline.observe",            methods::outlineObserve},
    Method{"row.create",                  methods::rowCreate},
    Method{"row.createMany",              methods::rowCreateMany},
    Method{"row.delete",                  methods::rowDelete},
    Method{"row.move",                    methods::rowMove},
    Method{"row.update",                  methods::rowUpdate},
    Method{"script.evaluate",             methods::scriptEvaluate},
};
// clang-format on

}  // namespace

Handler handlerOf(std::string_view name) {
  const auto* found =
      std::find_if(table.begin(), table.end(), [&](const Method& method) { return method.name == name; });
  if (found != table.end()) return found->handler;
  std::string names;
  for (const Method& method : table) names.append(names.empty() ? "" : ", ").append(method.name);
  throw RpcError(RpcCode::methodNotFound,
                 "Unknown method \"" + std::string(name) + "\" (served: " + names + ")");
}

}  // namespace vell::headless

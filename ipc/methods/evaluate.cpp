#include "ipc/methods/evaluate.h"

#include "ipc/methods/params.h"

namespace vell::ipc {

std::string CommandPerform::toJson() const {
  return ParamsWriter().add("editor", editor).add("ids", ids).json();
}

std::string ScriptEvaluate::toJson() const {
  return ParamsWriter().add("script", script).add("input", input).json();
}

}  // namespace vell::ipc

#include "ipc/methods/observe.h"

#include "ipc/methods/params.h"

namespace vell::ipc {

std::string OutlineObserve::toJson() const {
  return ParamsWriter()
      .add("path", path)
      .add("format", format)
      .add("shape", shape)
      .add("rows", rows)
      .add("outline", outline)
      .json();
}

}  // namespace vell::ipc

#include "ipc/methods/editor.h"

#include "ipc/methods/params.h"

namespace vell::ipc {

std::string EditorGet::toJson() const { return ParamsWriter().add("editor", editor).json(); }

std::string EditorUpdate::toJson() const {
  return ParamsWriter()
      .add("focus", focus)
      .add("selectRow", selectRow)
      .add("selectHead", selectHead)
      .add("expand", expand)
      .add("collapse", collapse)
      .add("outline", outline)
      .json();
}

}  // namespace vell::ipc

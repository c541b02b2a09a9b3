#include "ipc/methods/outline.h"

#include "ipc/methods/params.h"

namespace vell::ipc {

std::string OutlineGet::toJson() const {
  return ParamsWriter()
      .add("rowRefs", rowRefs)
      .add("format", format)
      .add("shape", shape)
      .add("rows", rows)
      .add("outline", outline)
      .json();
}

std::string OutlineNew::toJson() const { return ParamsWriter().add("format", format).json(); }

std::string OutlineNewContent::toJson() const { return ParamsWriter().add("format", format).json(); }

std::string OutlineClose::toJson() const {
  return ParamsWriter().add("outline", outline).add("discard", discard).json();
}

std::string OutlineFindByPath::toJson() const { return ParamsWriter().add("path", path).json(); }

std::string OutlineFindByPersistentId::toJson() const {
  return ParamsWriter().add("persistentId", persistentId).json();
}

std::string OutlineBringToFront::toJson() const { return ParamsWriter().add("outline", outline).json(); }

}  // namespace vell::ipc

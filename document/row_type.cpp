#include "document/row_type.h"

namespace vell::document {

std::string_view name(RowType type) {
  switch (type) {
    case RowType::body:
      return "body";
    case RowType::heading:
      return "heading";
    case RowType::task:
      return "task";
    case RowType::note:
      return "note";
    case RowType::quote:
      return "quote";
    case RowType::code:
      return "code";
    case RowType::hr:
      return "hr";
    case RowType::ordered:
      return "ordered";
    case RowType::unordered:
      return "unordered";
    case RowType::root:
      break;
  }
  return "root";
}

std::optional<RowType> rowType(std::string_view wanted) {
  for (const RowType type : rowTypes) {
    if (name(type) == wanted) return type;
  }
  return std::nullopt;
}

}  // namespace vell::document

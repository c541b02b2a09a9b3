#pragma once

#include <string_view>
#include <vector>

#include "formats/rows.h"
#include "json/document.h"
#include "json/writer.h"

// What the reader and the writers of JSON agree on.
namespace vell::formats {

/// The members that hold rows: of a document and of a row.
inline constexpr std::string_view rowsKey = "rows";
inline constexpr std::string_view childrenKey = "children";

/// The member that counts where a key is repeated; null where there is none.
inline const json::Member* lastOf(const std::vector<json::Member>& members, std::string_view key) {
  const json::Member* found = nullptr;
  for (const json::Member& member : members) {
    if (member.key == key) found = &member;
  }
  return found;
}

/// An id is a number where the rows are those of a live outline; such a number means nothing in a file.
inline bool isPersistentId(std::string_view key, json::Kind kind) {
  return key == "persistentId" || (key == "id" && kind == json::Kind::string);
}

}  // namespace vell::formats

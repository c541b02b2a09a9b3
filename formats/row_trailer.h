#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/document.h"

namespace vell::formats {

/// What stands in braces at the end of a row's line: `{#milk type=task color=red}`.
struct RowTrailer {
  std::string persistentId;
  std::optional<RowType> type;
  std::string created;   ///< as written; only where the format keeps times
  std::string modified;  ///< likewise
  Attributes attributes;

  bool empty() const {
    return persistentId.empty() && !type && created.empty() && modified.empty() && attributes.empty();
  }
};

enum class Times { kept, dropped };

/// Takes the trailer off the end of the line, with the blanks before it. False where the line has none.
/// Unquoted keys mean what they say: `type` the row's type and, where times are kept, `created` and
/// `modified`.
bool takeTrailer(std::string_view& line, Times times, RowTrailer& trailer);

/// Appends the trailer in braces; nothing when it is empty.
void appendTrailer(std::string& out, Times times, const RowTrailer& trailer);

}  // namespace vell::formats

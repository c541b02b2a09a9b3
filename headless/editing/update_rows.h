#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/editing/edit.h"

namespace vell::headless {

/// The new content of rows; absent fields stay as they are. At most one of `text`, `append` and `prepend`.
struct RowUpdate {
  std::optional<Text> text{};
  std::optional<Text> append{};
  std::optional<Text> prepend{};
  std::optional<std::string> type{};  ///< a type's name; hr clears the text
  std::vector<std::pair<std::string, std::optional<std::string>>> attributes{};  ///< none removes the key
  std::optional<std::string> persistentId{};  ///< for one row only; a row that has it loses it
};

/// Why a field of the update was refused.
struct FieldError {
  std::string field;  ///< "text", "append", "prepend", "type", "attributes" or "persistentId"
  std::string message;

  bool operator==(const FieldError&) const = default;
};

struct UpdatedRow {
  const Row* row;
  std::vector<FieldError> fieldErrors;
};

/// Updates the rows and returns an entry for each of them in order; a row given twice changes once. A field
/// that a row cannot take is refused in its entry, and the other fields are set. Throws Problem and changes
/// nothing if the update contradicts itself.
std::vector<UpdatedRow> updateRows(Edit& edit, const std::vector<const Row*>& rows, const RowUpdate& update);

}  // namespace vell::headless

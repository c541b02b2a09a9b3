#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/editing/edit.h"

namespace vell::headless {

/// What is to become of rows; what is not given stays. At most one of `text`, `append` and `prepend`.
struct RowUpdate {
  std::optional<Text> text{};
  std::optional<Text> append{};
  std::optional<Text> prepend{};
  std::optional<std::string> type{};  ///< a type's name; hr clears the text
  std::vector<std::pair<std::string, std::optional<std::string>>> attributes{};  ///< none removes the key
  std::optional<std::string> persistentId{};  ///< for one row only; a row that has it loses it
};

/// Why a field of the update was left alone.
struct FieldError {
  std::string field;  ///< "text", "append", "prepend", "type", "attributes" or "persistentId"
  std::string message;

  bool operator==(const FieldError&) const = default;
};

struct UpdatedRow {
  const Row* row;
  std::vector<FieldError> fieldErrors;
};

/// One entry for each row given, in that order; a row given twice changes once. A field that a row cannot
/// take is told in its entry and the others are still set. Throws Problem, with nothing changed, where the
/// update itself makes no sense.
std::vector<UpdatedRow> updateRows(Edit& edit, const std::vector<const Row*>& rows, const RowUpdate& update);

}  // namespace vell::headless

#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/parser.h"
#include "cli/shared_options.h"
#include "ipc/methods.h"

namespace vell::cli {

/// The references of `rowsArgument`, `@selection` when there are none.
std::vector<std::string> rowsOrSelection(const Arguments& arguments);

using Attributes = std::map<std::string, std::optional<std::string>>;

/// Attributes to set, each written "key=value", and keys to remove; none when both lists are empty.
/// Throws UsageError.
std::optional<Attributes> parseAttrs(const std::vector<std::string>& set,
                                     const std::vector<std::string>& unset);

/// Styled runs where the value is a JSON array, else markdown as typed.
ipc::RowText parseTextInput(const std::string& value);

}  // namespace vell::cli

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vell::document {

enum class RowType : std::uint8_t { body, heading, task, note, quote, code, hr, ordered, unordered, root };

/// The types a row below the root can have, in the order in which they are told to people.
inline constexpr std::array rowTypes = {RowType::body, RowType::heading, RowType::task,
                                        RowType::note, RowType::quote,   RowType::code,
                                        RowType::hr,   RowType::ordered, RowType::unordered};

/// "body", "heading", …
std::string_view name(RowType type);
/// The type of that name; none for unknown names and for "root".
std::optional<RowType> rowType(std::string_view name);

}  // namespace vell::document

#pragma once

#include "cli/command.h"

namespace vell::cli {

// Options that several groups declare alike.

inline constexpr Option outlineOption{
    .name = "--outline", .value = "outline-id", .help = "Outline persistant id (default: frontmost)."};

/// Rows to change; `@selection` when none is given.
inline constexpr Option rowsArgument{.name = "rows",
                                     .value = "row-refs",
                                     .help = "Row refs (default: @selection). See `vell --help`.",
                                     .takes = Takes::list};

}  // namespace vell::cli

#pragma once

#include "cli/command.h"

namespace vell::cli {

/// `vell create outline`.
extern const Command createOutlineCommand;

}  // namespace vell::cli

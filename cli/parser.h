#pragma once

#include "cli/arguments.h"
#include "cli/row_refs.h"
#include "cli/selection.h"

namespace vell::cli {

/// Reads what a selection left of the command line with the options of its command.
/// `typed` is the whole command line before any rewriting. Throws UsageError.
Arguments parse(const Selection& selection, const ArgumentList& typed);

}  // namespace vell::cli

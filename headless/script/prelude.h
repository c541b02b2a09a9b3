#pragma once

namespace vell::headless {

/// The text of prelude.js, which builds the `vell` global.
extern const char* const preludeSource;

}  // namespace vell::headless

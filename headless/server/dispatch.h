#pragma once

#include <string>
#include <string_view>

#include "headless/server/methods.h"

namespace vell::headless {

/// Carries out one request line and returns the answer's line: a result, or an error that says what is wrong.
/// Returns "" for a blank line and for a request without an id. Never throws for what a request holds.
std::string dispatch(std::string_view line, Application& application, const Subscriber& subscriber);

}  // namespace vell::headless

#pragma once

#include <string>

#include "headless/server/methods.h"
#include "json/text.h"

namespace vell::headless {

/// Carries out one request line and returns the answer's line: a result, or an error that says what is wrong.
/// Returns "" for a blank line and for a request without an id. Never throws for what a request holds.
std::string dispatch(json::Text line, Application& application, const Subscriber& subscriber);

}  // namespace vell::headless

#pragma once

#include <string_view>

#include "headless/server/client.h"
#include "headless/server/subscriptions.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// Carries out one request line and queues its answer: a result, or an error that says what was wrong. Never
/// throws for what a request holds. Lines of blanks alone are skipped; a request without an id is answered by
/// nothing.
void dispatch(std::string_view line, Application& application, Subscriptions& subscriptions, Client& client);

}  // namespace vell::headless

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ipc/message.h"

/// How much a host is sent at once. Some end the session at a line of 10 MB.
namespace vell::tools {

/// Why a text of an answer, which the application has given, is not passed on: it is too large, with its
/// size, the number of rows where the answer holds rows, and how to read less. None where it may be passed
/// on.
std::optional<std::string> refusal(std::string_view text, const ipc::Answer& answer);

/// A text that can be cut, such as the description of a failure: its start where it is too large.
std::string shortened(std::string text);

}  // namespace vell::tools

#pragma once

#include <string>
#include <vector>

#include "platform/container.h"

namespace vell::platform {

// What the headless application has to tell people who do not see its standard error, because a command
// started it: it leaves lines in its container, and the next command takes and prints them.

/// Leaves a line. Where many wait already, it is dropped; errors are ignored.
void leaveNotice(const std::string& line, const std::string& directory = containerDirectory());

/// The lines that wait, oldest first; they are gone then.
std::vector<std::string> takeNotices(const std::string& directory = containerDirectory());

}  // namespace vell::platform

#pragma once

#include <string>

#include "platform/process.h"

namespace vell::platform {

/// `openFileWithApplication` as the desktop does it, for applications that take the system's open requests.
void openFileThroughWorkspace(const std::string& file, const std::string& bundle, Seconds limit);

}  // namespace vell::platform

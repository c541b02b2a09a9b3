#pragma once

#include <string>

#include "platform/descriptor.h"

namespace vell::ipc {

/// A descriptor connected to the application's socket. Throws ClientError.
platform::Descriptor connectToApplication(const std::string& socketPath);

}  // namespace vell::ipc

#pragma once

#include <string>

namespace vell::platform {

/// Starts the bundle's `CFBundleExecutable` with the file as its one argument, in a session of its own,
/// without this process's descriptors, signal settings or terminal. Throws std::runtime_error that says why
/// it did not start. Both paths are absolute.
void startBundleWithFile(const std::string& file, const std::string& bundle);

}  // namespace vell::platform

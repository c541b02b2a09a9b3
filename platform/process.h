#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace vell::platform {

/// The running executable's path, symbolic links possibly unresolved; none where the system does not tell.
std::optional<std::string> executablePath();

/// The memory that a process of this user has in use; 0 where the system does not tell.
std::size_t residentBytes(pid_t process);

/// The command by which people start the application; empty where they start it as any other.
std::string startCommand();

using Seconds = std::chrono::duration<double>;

/// Asks the system to open the file with the application bundle, starting it where it does not run.
/// Returns when the application was asked, not when the file is open, or when the system has said nothing for
/// that long. Throws std::runtime_error that says why the application could not be started. Both paths are
/// absolute.
void openFileWithApplication(const std::string& file, const std::string& bundle, Seconds limit = Seconds(5));

// The ways to do that; they throw the same.

/// Starts the bundle's `CFBundleExecutable` with the file as its one argument, in a session of its own,
/// without this process's descriptors, signal settings or terminal.
void startBundleWithFile(const std::string& file, const std::string& bundle);
/// As the desktop of macOS does it, for applications that take the system's open requests.
void openFileThroughWorkspace(const std::string& file, const std::string& bundle, Seconds limit);

}  // namespace vell::platform

#pragma once

#include <string>
#include <vector>

namespace vell::headless {

/// Serves the files (and what clients open) until a signal asks to quit; or, where another application serves
/// the socket, has it open them. Files that do not open are told on standard error. Returns the exit status;
/// throws Problem where the socket cannot be served. Call it once, before any other thread is started.
int run(const std::vector<std::string>& files, const std::string& version);

}  // namespace vell::headless

#pragma once

#include <chrono>
#include <string>

#include "headless/script/script_engine.h"

namespace vell::headless {

/// What a script may use before it is stopped.
struct ScriptLimits {
  std::chrono::milliseconds time{5'000};  ///< on the wall clock, what it asks the application for included
  std::size_t memory = std::size_t{256} << 20;
};

/// Evaluates a script in a process of its own, which is `program` (vell-headless) started with `scriptFlag`,
/// so that nothing a script does can stop, swell or end this one. Sets the application aside while the script
/// runs. Throws ScriptError, Problem where no process can be started, and Abandoned.
std::string runScript(const std::string& program, const Script& script, const std::string& version,
                      ScriptHost& host, ScriptLimits limits = {});

inline constexpr const char* scriptFlag = "--evaluate-script";

/// The other side: evaluates the script that is asked for over the socket which is standard input. Returns
/// the exit status of the process.
int serveScript();

}  // namespace vell::headless

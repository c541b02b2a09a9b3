#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace vell::headless {

/// The application as a script sees it.
class ScriptHost {
 public:
  virtual ~ScriptHost() = default;
  /// Performs a method of the application; parameters and result are JSON texts. Besides the methods of the
  /// socket there are `script.parent` and `script.children` of a row and `script.save` of an outline. A
  /// std::exception becomes an exception that the script can catch.
  virtual std::string call(const std::string& method, const std::string& params) = 0;
  /// Takes a line that the script logs.
  virtual void log(const std::string& line) = 0;
};

/// A script that did not run to its end: syntax error, uncaught exception, or it was stopped.
/// `what()` names the fault and, where known, its line.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Script {
  std::string source;
  /// Handed to the script when it evaluates to a function.
  std::optional<std::string> input;
};

/// Evaluates JavaScript in a context of its own and returns its value as JSON text, `null` for undefined.
/// `version` is what `vell.version` reads. A script that never ends never returns. Throws ScriptError.
/// docs/scripting.md describes the `vell` global.
std::string evaluateScript(const Script& script, const std::string& version, ScriptHost& host);

}  // namespace vell::headless

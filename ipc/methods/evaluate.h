#pragma once

#include <optional>
#include <string>
#include <vector>

// As in ipc/methods/outline.h. `editor` absent is the frontmost editor.
namespace vell::ipc {

struct CommandList {
  static constexpr const char* method = "command.list";
  std::string toJson() const { return {}; }
};

struct CommandPerform {
  static constexpr const char* method = "command.perform";
  std::optional<std::string> editor = {};
  std::vector<std::string> ids;  // performed in order
  std::string toJson() const;
};

struct ScriptEvaluate {
  static constexpr const char* method = "script.evaluate";
  std::string script;
  std::optional<std::string> input = {};
  std::string toJson() const;
};

}  // namespace vell::ipc

#pragma once

#include <optional>
#include <string>
#include <vector>

// As in ipc/methods/outline.h. `editor` absent is the frontmost editor.
namespace vell::ipc {

struct EditorList {
  static constexpr const char* method = "editor.list";
  std::string toJson() const { return {}; }
};

struct EditorGet {
  static constexpr const char* method = "editor.get";
  std::optional<std::string> editor = {};
  std::string toJson() const;
};

struct EditorUpdate {
  static constexpr const char* method = "editor.update";
  std::optional<std::string> focus = {};
  std::optional<std::string> selectRow = {};
  std::optional<std::string> selectHead = {};
  std::optional<std::vector<std::string>> expand = {};
  std::optional<std::vector<std::string>> collapse = {};
  std::optional<std::string> outline = {};
  std::string toJson() const;
};

}  // namespace vell::ipc

#pragma once

#include <optional>
#include <string>

// As in ipc/methods/outline.h. These open subscriptions.
namespace vell::ipc {

struct OutlineObserve {
  static constexpr const char* method = "outline.observe";
  std::string path = "//*";
  std::string format;          // as in OutlineGet
  std::string shape = "tree";  // or flat
  bool rows = false;           // without the document around them
  std::optional<std::string> outline = {};
  std::string toJson() const;
};

struct DocumentsObserve {
  static constexpr const char* method = "documents.observe";
  std::string toJson() const { return {}; }
};

}  // namespace vell::ipc

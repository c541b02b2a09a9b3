#pragma once

#include <optional>
#include <string>
#include <vector>

// Each record is one method's params: absent optionals are left out, `outline` absent is the frontmost
// outline. `toJson()` gives compact JSON text, empty for a method that takes none; it throws ParamsError.
namespace vell::ipc {

struct OutlineList {
  static constexpr const char* method = "outline.list";
  std::string toJson() const { return {}; }
};

struct OutlineGet {
  static constexpr const char* method = "outline.get";
  std::optional<std::vector<std::string>> rowRefs = {};  // absent or empty: every row
  std::string format;                                    // session, json, markdown, opml, vell or txt
  std::string shape = "tree";                            // or flat
  bool rows = false;                                     // without the document around them
  std::optional<std::string> outline = {};
  std::string toJson() const;
};

struct OutlineNew {
  static constexpr const char* method = "outline.new";
  std::optional<std::string> format = {};
  std::string toJson() const;
};

struct OutlineNewContent {
  static constexpr const char* method = "outline.newContent";
  std::string format;
  std::string toJson() const;
};

struct OutlineClose {
  static constexpr const char* method = "outline.close";
  std::optional<std::string> outline = {};
  std::optional<bool> discard = {};
  std::string toJson() const;
};

struct OutlineFindByPath {
  static constexpr const char* method = "outline.findByPath";
  std::string path;  // absolute
  std::string toJson() const;
};

struct OutlineFindByPersistentId {
  static constexpr const char* method = "outline.findByPersistentId";
  std::string persistentId;
  std::string toJson() const;
};

struct OutlineBringToFront {
  static constexpr const char* method = "outline.bringToFront";
  std::string outline;
  std::string toJson() const;
};

}  // namespace vell::ipc

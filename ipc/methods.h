#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

// The application's methods. Each record is one method's params: absent optionals are left out. `outline`
// absent is the frontmost outline, `editor` absent the frontmost editor. A row reference is a session id, a
// persistent id, an OutlinePath, "@selection" or "@focused". `toJson()` gives compact JSON text, empty for a
// method that takes none; it throws ParamsError.
namespace vell::ipc {

/// An argument that cannot be sent; `what()` names it.
class ParamsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

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

/// Where rows go; `before` and `after` go before `parent` and `position` ("start", "end" or an index).
struct RowPlace {
  std::optional<std::string> parent = {};
  std::optional<std::string> position = {};
  std::optional<std::string> before = {};
  std::optional<std::string> after = {};
};

struct RowCreate {
  static constexpr const char* method = "row.create";
  std::string markdown;  // one line
  std::optional<std::string> outline = {};
  RowPlace place = {};
  std::string toJson() const;
};

struct RowCreateMany {
  static constexpr const char* method = "row.createMany";
  std::string markdown;
  std::optional<std::string> outline = {};
  RowPlace place = {};
  std::string toJson() const;
};

/// A JSON array of styled runs, `[{"attrs":…,"string":…}]`: compact text with sorted keys.
struct StyledRuns {
  std::string json;
};

/// Markdown, or styled runs.
using RowText = std::variant<std::string, StyledRuns>;

struct RowUpdate {
  static constexpr const char* method = "row.update";
  std::vector<std::string> rows;
  std::optional<std::string> outline = {};
  std::optional<RowText> text = {};
  std::optional<RowText> append = {};
  std::optional<RowText> prepend = {};
  std::optional<std::string> type = {};
  /// An attribute without a value is removed.
  std::optional<std::map<std::string, std::optional<std::string>>> attributes = {};
  std::optional<std::string> persistentId = {};  // for exactly one row
  std::string toJson() const;
};

struct RowMove {
  static constexpr const char* method = "row.move";
  std::vector<std::string> rows;
  std::optional<std::string> to = {};
  std::optional<std::string> position = {};
  std::optional<std::string> before = {};
  std::optional<std::string> after = {};
  std::optional<std::string> outline = {};
  std::string toJson() const;
};

struct RowDelete {
  static constexpr const char* method = "row.delete";
  std::vector<std::string> rows;
  std::optional<std::string> outline = {};
  std::string toJson() const;
};

// These open subscriptions.

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

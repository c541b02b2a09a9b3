#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// As in ipc/methods/outline.h. A row reference is a session id, a persistent id, an OutlinePath, "@selection"
// or "@focused".
namespace vell::ipc {

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

/// The text of a JSON array of styled runs, `[{"string": …, "attrs": …}]`.
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
  std::optional<std::map<std::string, std::optional<std::string>>> attributes =
      {};                                        // without a value: removed
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

}  // namespace vell::ipc

#include "cli/completion_values.h"

#include <algorithm>
#include <map>
#include <set>

#include "cli/outline_naming.h"
#include "ipc/deadline_client.h"
#include "ipc/methods.h"
#include "outline_path/with_parse.h"
#include "text/display_width.h"
#include "text/utf8.h"

namespace vell::cli {
namespace {

// What the application tells.

/// How long a person at a shell waits for an application that does not answer.
constexpr std::chrono::milliseconds patience{300};
/// How many rows are looked at for their ids and attributes.
constexpr const char* firstRows = "//*[0:2000]";

/// Calls whose failure, whatever it is, leaves the candidates out that they would have brought.
class Questions {
 public:
  template <class Record>
  std::optional<ipc::Answer> ask(const Record& record) {
    try {
      return sendNaming(record, application_,
                        [&](const Record& named) { return application_.request(named); });
    } catch (const std::exception&) {
      return std::nullopt;
    }
  }

  std::vector<ipc::OutlineSummary> outlines() { return openOutlines(application_); }

 private:
  ipc::DeadlineClient application_{patience};
};

std::string member(const json::Node& object, std::string_view key) {
  const auto found = object.find(key);
  return found ? found->string().value_or("") : "";
}

/// Whether a terminal shows what the text is: Unicode's signs for the direction of writing make it show what
/// follows in another order.
bool isShownInOrder(std::string_view shown) {
  while (!shown.empty()) {
    const text::CodePoint point = text::firstCodePoint(shown);
    const char32_t c = point.value;
    if ((c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069)) return false;
    shown.remove_prefix(point.length);
  }
  return true;
}

/// Whether a person could have typed the word as it stands.
bool isTypable(const std::string& word) {
  constexpr std::size_t longest = 200;
  return !word.empty() && word.size() <= longest && !word.starts_with('-') && isShownInOrder(word) &&
         text::displayText(word).text == word;
}

void add(Candidates& candidates, std::string word, std::string description = {}) {
  if (!isShownInOrder(description)) description.clear();
  if (isTypable(word)) candidates.push_back({std::move(word), std::move(description)});
}

bool anyBegins(const Candidates& candidates, const std::string& text) {
  return std::any_of(candidates.begin(), candidates.end(),
                     [&](const Candidate& candidate) { return candidate.word.starts_with(text); });
}

// Rows and their attributes.

/// The rows of an outline, one after the other, as far as they are looked at.
std::optional<ipc::Answer> rowsOf(const std::optional<std::string>& outline) {
  return Questions().ask(ipc::OutlineGet{
      .rowRefs = {{firstRows}}, .format = "session", .shape = "flat", .rows = true, .outline = outline});
}

/// The first line of the row's text, or its type where it has none.
std::string summary(const json::Node& row) {
  std::string text;
  if (const auto runs = row.find("text")) {
    for (const json::Node& run : runs->elements()) text += member(run, "string");
  }
  return text.empty() ? member(row, "type") : text.substr(0, text.find('\n'));
}

/// The names of the attributes in use, each with its values.
using Attributes = std::map<std::string, std::set<std::string>>;

Attributes attributesOf(const std::optional<std::string>& outline) {
  Attributes attributes;
  const auto rows = rowsOf(outline);
  if (!rows) return attributes;
  for (const json::Node& row : rows->result().elements()) {
    const auto given = row.find("attributes");
    if (!given) continue;
    for (const auto& [key, text, at] : given->members()) attributes[key].insert(text.string().value_or(""));
  }
  return attributes;
}

// The candidates, by what stands between angle brackets in usage lines.

Candidates outlines(const TypedValue& value) {
  Candidates ids, names;
  for (const ipc::OutlineSummary& outline : Questions().outlines()) {
    add(ids, outline.persistentId, outline.displayName);
    add(names, outline.displayName, outline.persistentId);
  }
  // A name will do where it is no beginning of an id.
  return anyBegins(ids, value.text) || !anyBegins(names, value.text) ? ids : names;
}

Candidates editors(const TypedValue&) {
  Questions questions;
  Candidates candidates;
  const auto editors = questions.ask(ipc::EditorList{});
  if (!editors) return candidates;
  const auto open = questions.outlines();
  for (const json::Node& editor : editors->result().elements()) {
    const std::string edited = member(editor, "outlineId");
    const auto outline = std::find_if(open.begin(), open.end(),
                                      [&](const auto& summary) { return summary.persistentId == edited; });
    add(candidates, member(editor, "id"), outline == open.end() ? edited : outline->displayName);
  }
  return candidates;
}

Candidates editorCommands(const TypedValue&) {
  Candidates candidates;
  const auto commands = Questions().ask(ipc::CommandList{});
  if (!commands) return candidates;
  for (const json::Node& command : commands->result().elements()) add(candidates, member(command, "id"));
  return candidates;
}

Candidates outlinePaths(const TypedValue& value) {
  const std::string text = value.text.empty() ? "//" : value.text;
  std::vector<std::string> names, texts;
  // Values are offered of the attribute that the path names last.
  const std::string last = text.substr(text.rfind('@') + 1);
  for (const auto& [name, values] : attributesOf(value.outline)) {
    names.push_back(name);
    if (last.starts_with(name)) texts.assign(values.begin(), values.end());
  }
  const auto found = outline_path::OutlinePathWithParse(text).completion(text.size(), names, texts);
  Candidates candidates;
  for (const std::string& item : found.items) add(candidates, text.substr(0, found.range->begin) + item);
  return candidates;
}

Candidates rowReferences(const TypedValue& value) {
  if (value.text.starts_with('/') || value.text.starts_with('(')) return outlinePaths(value);
  Candidates candidates = {{"@selection", "The row that holds the caret"},
                           {"@focused", "The row that the editor is focused into"}};
  if (value.text.starts_with('@')) return candidates;
  const auto rows = rowsOf(value.outline);
  if (!rows) return candidates;
  for (const json::Node& row : rows->result().elements())
    add(candidates, member(row, "persistentId"), summary(row));
  return candidates;
}

Candidates attributeKeys(const TypedValue& value) {
  Candidates candidates;
  for (const auto& [key, texts] : attributesOf(value.outline)) add(candidates, key);
  return candidates;
}

Candidates attributeSettings(const TypedValue& value) {
  const std::size_t equals = value.text.find('=');
  Candidates candidates;
  for (const auto& [key, texts] : attributesOf(value.outline)) {
    if (equals == std::string::npos) {
      add(candidates, key + "=");
    } else if (key == value.text.substr(0, equals)) {
      for (const std::string& text : texts) add(candidates, key + "=" + text);
    }
  }
  return candidates;
}

constexpr struct {
  std::string_view value;
  Candidates (*offered)(const TypedValue&);
} sources[] = {
    {"row-ref", rowReferences},       {"row-refs", rowReferences}, {"path", outlinePaths},
    {"outline-id", outlines},         {"editor-id", editors},      {"ids", editorCommands},
    {"key=value", attributeSettings}, {"key", attributeKeys},
};

}  // namespace

std::optional<Candidates> valuesFor(const TypedValue& value) {
  const Option& option = value.option;
  if (option.file) return std::nullopt;
  Candidates candidates;
  for (const auto& words : {option.choices, option.suggestions})
    for (const std::string_view word : words) candidates.push_back({std::string(word)});
  if (!candidates.empty()) return candidates;
  const auto source = std::find_if(std::begin(sources), std::end(sources),
                                   [&](const auto& entry) { return entry.value == option.value; });
  return source == std::end(sources) ? candidates : source->offered(value);
}

}  // namespace vell::cli

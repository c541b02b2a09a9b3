#include "ipc/methods.h"

#include <nlohmann/json.hpp>

#include "json/rewrite.h"

namespace vell::ipc {

namespace {

using nlohmann::json;

/// The text as a JSON string. `place` tells which argument it is.
std::string quoted(const std::string& text, const std::string& place) {
  try {
    return json(text).dump();
  } catch (const json::type_error&) {
    const std::string name = json(place).dump(-1, ' ', false, json::error_handler_t::replace);
    throw ParamsError("The argument " + name + " is not valid UTF-8.");
  }
}

void separate(std::string& text) {
  if (text.size() > 1) text += ',';
}

/// Puts a params object together: what is absent is left out, keys come out sorted.
/// Throws ParamsError for text that is not valid UTF-8.
class ParamsWriter {
 public:
  using Attributes = std::map<std::string, std::optional<std::string>>;

  ParamsWriter& add(const std::string& key, const std::string& value);
  ParamsWriter& add(const std::string& key, const char* value) = delete;
  ParamsWriter& add(const std::string& key, bool value);
  ParamsWriter& add(const std::string& key, const std::vector<std::string>& values);
  /// An object of strings; one without a value becomes null.
  ParamsWriter& add(const std::string& key, const Attributes& attributes);
  /// JSON text, taken as it stands.
  ParamsWriter& addJson(const std::string& key, std::string json);

  template <class Value>
  ParamsWriter& add(const std::string& key, const std::optional<Value>& value) {
    return value ? add(key, *value) : *this;
  }

  /// The object as compact JSON text.
  std::string json() const;

 private:
  std::map<std::string, std::string> members_;
};

ParamsWriter& ParamsWriter::add(const std::string& key, const std::string& value) {
  return addJson(key, quoted(value, key));
}

ParamsWriter& ParamsWriter::add(const std::string& key, bool value) {
  return addJson(key, value ? "true" : "false");
}

ParamsWriter& ParamsWriter::add(const std::string& key, const std::vector<std::string>& values) {
  std::string array = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    separate(array);
    array += quoted(values[i], key + "[" + std::to_string(i) + "]");
  }
  return addJson(key, array + "]");
}

ParamsWriter& ParamsWriter::add(const std::string& key, const Attributes& attributes) {
  std::string object = "{";
  for (const auto& [name, value] : attributes) {
    separate(object);
    const std::string place = key + "." + name;
    object += quoted(name, place) + ":" + (value ? quoted(*value, place) : "null");
  }
  return addJson(key, object + "}");
}

ParamsWriter& ParamsWriter::addJson(const std::string& key, std::string json) {
  members_[key] = std::move(json);
  return *this;
}

std::string ParamsWriter::json() const {
  std::string object = "{";
  for (const auto& [key, value] : members_) {
    separate(object);
    object.append("\"").append(key).append("\":").append(value);
  }
  return object + "}";
}

std::string createParams(const std::string& markdown, const std::optional<std::string>& outline,
                         const RowPlace& place) {
  return ParamsWriter()
      .add("markdown", markdown)
      .add("outline", outline)
      .add("parent", place.parent)
      .add("position", place.position)
      .add("before", place.before)
      .add("after", place.after)
      .json();
}

void addText(ParamsWriter& params, const std::string& key, const std::optional<RowText>& text) {
  if (!text) return;
  if (const auto* markdown = std::get_if<std::string>(&*text)) {
    params.add(key, *markdown);
  } else {
    params.addJson(key, vell::json::rewrite(std::get<StyledRuns>(*text).json, vell::json::Layout::compact));
  }
}

}  // namespace

std::string OutlineGet::toJson() const {
  return ParamsWriter()
      .add("rowRefs", rowRefs)
      .add("format", format)
      .add("shape", shape)
      .add("rows", rows)
      .add("outline", outline)
      .json();
}

std::string OutlineNew::toJson() const { return ParamsWriter().add("format", format).json(); }

std::string OutlineNewContent::toJson() const { return ParamsWriter().add("format", format).json(); }

std::string OutlineClose::toJson() const {
  return ParamsWriter().add("outline", outline).add("discard", discard).json();
}

std::string OutlineFindByPath::toJson() const { return ParamsWriter().add("path", path).json(); }

std::string OutlineFindByPersistentId::toJson() const {
  return ParamsWriter().add("persistentId", persistentId).json();
}

std::string OutlineBringToFront::toJson() const { return ParamsWriter().add("outline", outline).json(); }

std::string EditorGet::toJson() const { return ParamsWriter().add("editor", editor).json(); }

std::string EditorUpdate::toJson() const {
  return ParamsWriter()
      .add("focus", focus)
      .add("selectRow", selectRow)
      .add("selectHead", selectHead)
      .add("expand", expand)
      .add("collapse", collapse)
      .add("outline", outline)
      .json();
}

std::string CommandPerform::toJson() const {
  return ParamsWriter().add("editor", editor).add("ids", ids).json();
}

std::string ScriptEvaluate::toJson() const {
  return ParamsWriter().add("script", script).add("input", input).json();
}

std::string RowCreate::toJson() const { return createParams(markdown, outline, place); }

std::string RowCreateMany::toJson() const { return createParams(markdown, outline, place); }

std::string RowUpdate::toJson() const {
  ParamsWriter params;
  params.add("rows", rows)
      .add("outline", outline)
      .add("type", type)
      .add("attributes", attributes)
      .add("persistentId", persistentId);
  addText(params, "text", text);
  addText(params, "append", append);
  addText(params, "prepend", prepend);
  return params.json();
}

std::string RowMove::toJson() const {
  return ParamsWriter()
      .add("rows", rows)
      .add("to", to)
      .add("position", position)
      .add("before", before)
      .add("after", after)
      .add("outline", outline)
      .json();
}

std::string RowDelete::toJson() const {
  return ParamsWriter().add("rows", rows).add("outline", outline).json();
}

std::string OutlineObserve::toJson() const {
  return ParamsWriter()
      .add("path", path)
      .add("format", format)
      .add("shape", shape)
      .add("rows", rows)
      .add("outline", outline)
      .json();
}

}  // namespace vell::ipc

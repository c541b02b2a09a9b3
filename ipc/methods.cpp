#include "ipc/methods.h"

#include "json/writer.h"
#include "text/utf8.h"

namespace vell::ipc {

namespace {

/// The text, which is UTF-8; `place` names the argument that it is.
const std::string& checked(const std::string& text, const std::string& place) {
  if (!text::findInvalidUtf8(text)) return text;
  throw ParamsError("The argument " + json::quoted(place) + " is not valid UTF-8.");
}

/// Writes a params object, whose members are added in the order of their keys.
class Params {
 public:
  using Attributes = std::map<std::string, std::optional<std::string>>;

  Params() { writer_.beginObject(); }

  Params& add(const std::string& key, const std::string& text) {
    writer_.member(key, checked(text, key));
    return *this;
  }
  Params& add(const std::string& key, bool value) {
    writer_.member(key, value);
    return *this;
  }
  Params& add(const std::string& key, const std::vector<std::string>& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i) checked(texts[i], key + "[" + std::to_string(i) + "]");
    writer_.key(key).array(texts);
    return *this;
  }
  Params& add(const std::string& key, const Attributes& attributes) {
    writer_.key(key).beginObject();
    for (const auto& [name, value] : attributes) {
      const std::string place = key + "." + name;
      writer_.key(checked(name, place)).value(value ? checked(*value, place) : value);
    }
    writer_.endObject();
    return *this;
  }
  Params& add(const std::string& key, const RowText& text) {
    if (const auto* markdown = std::get_if<std::string>(&text)) return add(key, *markdown);
    writer_.key(key).raw(std::get<StyledRuns>(text).json);
    return *this;
  }
  template <class Value>
  Params& add(const std::string& key, const std::optional<Value>& value) {
    return value ? add(key, *value) : *this;
  }

  std::string json() {
    writer_.endObject();
    return std::move(text_);
  }

 private:
  std::string text_;
  json::Writer writer_{text_};
};

std::string createParams(const std::string& markdown, const std::optional<std::string>& outline,
                         const RowPlace& place) {
  return Params()
      .add("after", place.after)
      .add("before", place.before)
      .add("markdown", markdown)
      .add("outline", outline)
      .add("parent", place.parent)
      .add("position", place.position)
      .json();
}

}  // namespace

std::string OutlineGet::toJson() const {
  return Params()
      .add("format", format)
      .add("outline", outline)
      .add("rowRefs", rowRefs)
      .add("rows", rows)
      .add("shape", shape)
      .json();
}

std::string OutlineNew::toJson() const { return Params().add("format", format).json(); }

std::string OutlineNewContent::toJson() const { return Params().add("format", format).json(); }

std::string OutlineClose::toJson() const {
  return Params().add("discard", discard).add("outline", outline).json();
}

std::string OutlineFindByPath::toJson() const { return Params().add("path", path).json(); }

std::string OutlineFindByPersistentId::toJson() const {
  return Params().add("persistentId", persistentId).json();
}

std::string OutlineBringToFront::toJson() const { return Params().add("outline", outline).json(); }

std::string OutlineObserve::toJson() const {
  return Params()
      .add("format", format)
      .add("outline", outline)
      .add("path", path)
      .add("rows", rows)
      .add("shape", shape)
      .json();
}

std::string EditorGet::toJson() const { return Params().add("editor", editor).json(); }

std::string EditorUpdate::toJson() const {
  return Params()
      .add("collapse", collapse)
      .add("expand", expand)
      .add("focus", focus)
      .add("outline", outline)
      .add("selectHead", selectHead)
      .add("selectRow", selectRow)
      .json();
}

std::string CommandPerform::toJson() const { return Params().add("editor", editor).add("ids", ids).json(); }

std::string ScriptEvaluate::toJson() const {
  return Params().add("input", input).add("script", script).json();
}

std::string RowCreate::toJson() const { return createParams(markdown, outline, place); }

std::string RowCreateMany::toJson() const { return createParams(markdown, outline, place); }

std::string RowUpdate::toJson() const {
  return Params()
      .add("append", append)
      .add("attributes", attributes)
      .add("outline", outline)
      .add("persistentId", persistentId)
      .add("prepend", prepend)
      .add("rows", rows)
      .add("text", text)
      .add("type", type)
      .json();
}

std::string RowMove::toJson() const {
  return Params()
      .add("after", after)
      .add("before", before)
      .add("outline", outline)
      .add("position", position)
      .add("rows", rows)
      .add("to", to)
      .json();
}

std::string RowDelete::toJson() const { return Params().add("outline", outline).add("rows", rows).json(); }

}  // namespace vell::ipc

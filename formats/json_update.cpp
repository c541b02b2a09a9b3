#include <algorithm>
#include <unordered_map>

#include "formats/format.h"
#include "formats/json_format.h"
#include "formats/json_members.h"
#include "formats/json_object.h"
#include "formats/tree_update.h"
#include "json/escapes.h"

namespace vell::formats {
namespace {

bool breaksLine(std::string_view text) { return text.find('\n') != text.npos; }

std::string textValue(const Text& text, bool asString) {
  if (asString && text.isPlain()) return json::quoted(text.string());
  std::string json;
  json::Writer writer(json);
  writeRuns(writer, text);
  return json;
}

std::string attributesValue(const Attributes& attributes) {
  std::string json;
  json::Writer writer(json);
  writeAttributes(writer, attributes);
  return json;
}

/// Rewrites one row's object for what the row says now.
class RowObject {
 public:
  RowObject(JsonObject& object, const JsonStyle& style, const Row& row, const RowContent& before)
      : object_(object), style_(style), row_(row), before_(before) {}

  void update(bool tellsTimes) {
    if (row_.type() != before_.type) object_.set("type", json::quoted(name(row_.type())));
    if (row_.text() != before_.text) updateText();
    if (row_.attributes() != before_.attributes) updateAttributes();
    if (row_.persistentId() != before_.persistentId) updateId(object_, row_.persistentId());
    const bool hasTime = object_.find("modified") || object_.find("created");
    if ((tellsTimes || hasTime) && row_.modified() != before_.modified)
      object_.set("modified", json::quoted(document::formatTimestamp(row_.modified())));
  }

  static void updateId(JsonObject& object, const std::string& id);

 private:
  void updateText();
  void updateAttributes();

  JsonObject& object_;
  const JsonStyle& style_;
  const Row& row_;
  const RowContent& before_;
};

/// A text that was a string stays one while it has no styles.
void RowObject::updateText() {
  const auto index = object_.find("text");
  const bool wasString = index ? object_.value(*index).kind() == json::Kind::string : style_.hasPlainTexts;
  object_.set("text", textValue(row_.text(), wasString));
}

/// An attribute keeps its place as long as none that is not yet written belongs before it.
void RowObject::updateAttributes() {
  const Attributes& now = row_.attributes();
  const auto index = object_.find("attributes");
  if (now.empty()) return object_.remove("attributes");
  if (!index) return object_.append("attributes", attributesValue(now));
  JsonObject attributes(std::string(object_.valueText(*index)), style_, object_.indentOf(*index));
  std::size_t written = 0;
  for (std::size_t member = 0; member < attributes.size(); ++member) {
    if (written == now.size() || attributes.key(member) != now.begin()[written].key) {
      attributes.remove(member);
      continue;
    }
    const std::string& value = now.begin()[written++].value;
    if (attributes.value(member).string() != value) attributes.set(member, json::quoted(value));
  }
  for (; written < now.size(); ++written)
    attributes.append(now.begin()[written].key, json::quoted(now.begin()[written].value));
  object_.replace(*index, attributes.text());
}

/// Where the "id" is one of a live outline, the persistent one stands beside it.
void RowObject::updateId(JsonObject& object, const std::string& id) {
  std::optional<std::size_t> counts;
  for (std::size_t index = 0; index < object.size(); ++index) {
    if (!isPersistentId(object.key(index), object.value(index).kind())) continue;
    if (id.empty()) object.remove(index);
    counts = index;
  }
  if (id.empty()) return;
  if (counts) return object.set(*counts, json::quoted(id));
  object.append(object.find("id") ? "persistentId" : "id", json::quoted(id));
}

class JsonUpdate : public TreeUpdate {
 public:
  explicit JsonUpdate(const Outline& outline);

 private:
  bool rootIsAsRead() const override;
  OwnText render(const Row& row, const SourceSpan* span, std::string_view indent) override;
  std::string childIndent(const Row& row, const SourceSpan* span, std::string_view indent) const override;
  std::string closeIndent(const Row& row, const SourceSpan* span, std::string_view indent) const override;
  std::string_view contentOf(std::string_view) const override { return {}; }
  std::size_t trailEnd(std::size_t rowEnd) const override { return rowEnd; }
  std::string separator(std::string_view lead, bool isFirst) const override {
    return separatorLike(lead, isFirst, style_);
  }

  bool isRoot(const Row& row) const { return &row == &outline_.root(); }
  std::string ownText(const SourceSpan& span) const;
  JsonStyle fileStyle() const;
  JsonStyle styleLike(const SourceSpan& span, JsonStyle style) const;
  JsonStyle styleOfNew(const Row& row) const;
  void fillNew(JsonObject& object, const Row& row, const JsonStyle& style) const;
  bool isSpread(const Row& row, const SourceSpan* span) const;
  std::string deeper(const Row& row, std::string_view indent, std::size_t levels) const;

  const SourceSpan& root_;
  bool tellsTimes_ = false;
  JsonStyle style_;
  std::unordered_map<SessionId, JsonStyle> newStyles_;  ///< of the rows that are new
};

JsonUpdate::JsonUpdate(const Outline& outline)
    : TreeUpdate(outline, true), root_(*source_.find(outline.root().id())) {
  const std::string document = ownText(root_);
  if (document.front() == '{') tellsTimes_ = JsonObject(document, style_, {}).find("created").has_value();
  style_ = fileStyle();
}

/// What a row or the document says, without the rows in it.
std::string JsonUpdate::ownText(const SourceSpan& span) const {
  return std::string(slice(span.begin, span.end)).append(slice(span.closeBegin, span.closeEnd));
}

/// As the first row is laid out, or where there is none, the document. Where the beginning of a text has no
/// line breaks, the rest is not searched for them.
JsonStyle JsonUpdate::fileStyle() const {
  JsonStyle style{.hasPlainTexts = !tellsTimes_};
  constexpr std::size_t enough = 1 << 16;
  const std::string_view text = slice(root_.begin, std::min(root_.closeEnd, root_.begin + enough));
  const std::size_t line = text.find('\n');
  if (line != text.npos) style.lineBreak = line > 0 && text[line - 1] == '\r' ? "\r\n" : "\n";
  for (std::size_t at = line; at != text.npos && style.unit.empty(); at = text.find('\n', at + 1)) {
    style.unit = text.substr(at + 1, text.find_first_not_of(" \t", at + 1) - at - 1);
  }
  const SourceSpan* first = source_.find(outline_.root().id() + 1);
  return styleLike(first ? *first : root_, std::move(style));
}

JsonStyle JsonUpdate::styleLike(const SourceSpan& span, JsonStyle style) const {
  const std::string text = ownText(span);
  if (text.front() != '{') return style;
  const JsonObject object(text, style, {});
  if (object.size() == 0) return style;
  style.spreadsObjects = object.isSpread();
  style.colon = object.colon();
  style.comma = object.comma().value_or(style.colon.ends_with(' ') ? ", " : ",");
  for (const std::string_view key : {"attributes", "text"}) {
    const auto index = object.find(key);
    if (!index) continue;
    const std::string_view value = object.valueText(*index);
    if (value.front() != '"' && value.size() > 2) style.spreadsValues = breaksLine(value);
    if (key == "text") style.hasPlainTexts = value.front() == '"';
  }
  return style;
}

/// A new row looks like its neighbour.
JsonStyle JsonUpdate::styleOfNew(const Row& row) const {
  for (const Row* near : {row.previous(), row.next(), row.parent()}) {
    if (!near || isRoot(*near)) continue;
    if (const auto found = newStyles_.find(near->id()); found != newStyles_.end()) return found->second;
    const SourceSpan* span = source_.find(near->id());
    if (span && near != row.parent()) return styleLike(*span, style_);
  }
  return style_;
}

/// Only the outline's own id changes, and only where the source has one.
bool JsonUpdate::rootIsAsRead() const {
  const std::string& before = source_.document().persistentId;
  return before.empty() || before == outline_.persistentId();
}

TreeUpdate::OwnText JsonUpdate::render(const Row& row, const SourceSpan* span, std::string_view indent) {
  const JsonStyle style = span ? styleLike(*span, style_) : styleOfNew(row);
  if (!span) newStyles_.emplace(row.id(), style);
  JsonObject object(span ? ownText(*span) : "{}", style, indent);
  if (!span) {
    fillNew(object, row, style);
  } else if (isRoot(row)) {
    RowObject::updateId(object, outline_.persistentId());
  } else if (const RowContent* before = source_.original(row.id())) {
    RowObject(object, style, row, *before).update(tellsTimes_);
  }
  if (row.firstChild() && (!span || span->closeEnd == 0)) object.appendList(childrenKey);
  auto [open, close] = object.split(isRoot(row) ? rowsKey : childrenKey);
  return {std::move(open), std::move(close)};
}

void JsonUpdate::fillNew(JsonObject& object, const Row& row, const JsonStyle& style) const {
  const auto append = [&](std::string_view key, const std::string& value) {
    object.append(key, json::quoted(value));
  };
  if (!row.persistentId().empty()) append("id", row.persistentId());
  if (tellsTimes_ || row.type() != RowType::body) append("type", std::string(name(row.type())));
  object.append("text", textValue(row.text(), style.hasPlainTexts));
  if (!row.attributes().empty()) object.append("attributes", attributesValue(row.attributes()));
  if (!tellsTimes_) return;
  append("created", document::formatTimestamp(row.created()));
  append("modified", document::formatTimestamp(row.modified()));
}

bool JsonUpdate::isSpread(const Row& row, const SourceSpan* span) const {
  if (!span) return newStyles_.at(row.id()).spreadsObjects;
  const std::string_view own = slice(span->begin + 1, span->end);
  return breaksLine(own.substr(0, own.find_first_not_of(" \t\r\n")));
}

/// The rows of an object stand in one of its members, which may be a level deeper itself.
std::string JsonUpdate::childIndent(const Row& row, const SourceSpan* span, std::string_view indent) const {
  const bool isList = isRoot(row) && source_.text()[root_.begin] == '[';
  return deeper(row, indent, !isList && isSpread(row, span) ? 2 : 1);
}

std::string JsonUpdate::closeIndent(const Row& row, const SourceSpan* span, std::string_view indent) const {
  const bool isList = isRoot(row) && source_.text()[root_.begin] == '[';
  return deeper(row, indent, !isList && isSpread(row, span) ? 1 : 0);
}

std::string JsonUpdate::deeper(const Row& row, std::string_view indent, std::size_t levels) const {
  std::string result(isRoot(row) && !breaksLine(indent) ? style_.lineBreak : indent);
  if (!breaksLine(result)) return {};
  for (; levels > 0 && result.size() <= maxIndent; --levels) result += style_.unit;
  return result;
}

}  // namespace

FileText updateJson(const Outline& outline) { return JsonUpdate(outline).write(); }

}  // namespace vell::formats

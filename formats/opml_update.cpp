#include <algorithm>

#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/json_format.h"
#include "formats/opml_format.h"
#include "formats/tree_update.h"
#include "formats/xml_text.h"
#include "json/writer.h"

namespace vell::formats {
namespace {

constexpr std::string_view endTag = "</outline>";

/// True if the XML declaration names an encoding other than the one that the text is in. What is added is
/// then ASCII, which means the same in both.
bool declaresOtherEncoding(std::string_view head) {
  const std::size_t begin = head.find("<?xml");
  if (begin == head.npos) return false;
  std::string_view declaration = head.substr(begin, head.find("?>", begin) - begin);
  const std::size_t name = declaration.find("encoding");
  const std::size_t quote = name == head.npos ? name : declaration.find_first_of("\"'", name);
  if (quote == head.npos) return false;
  const std::string_view encoding = declaration.substr(quote + 1, 5);
  return !(encoding.starts_with("utf-8") || encoding.starts_with("UTF-8"));
}

/// Rewrites one start tag for what its row says now.
class OutlineTag {
 public:
  OutlineTag(std::string_view tag, bool isAscii, const Row& row, const RowContent& before)
      : tag_(tag, isAscii), row_(row), before_(before) {}

  std::string text(bool tellsTimes, bool opens) {
    updateText();
    updateType();
    if (row_.persistentId() != before_.persistentId) setOrRemove("vell-id", row_.persistentId());
    updateAttributes();
    if (tellsTimes || tag_.find("vell-created") || tag_.find("vell-modified")) updateTimes();
    return tag_.text(opens);
  }

 private:
  void updateText();
  void updateType();
  void updateAttributes();
  std::size_t updateDiverted(std::size_t index, std::size_t from);
  void updateTimes();

  void setOrRemove(std::string_view name, const std::string& value) {
    if (value.empty()) return tag_.remove(name);
    tag_.set(name, value);
  }

  XmlTag tag_;
  const Row& row_;
  const RowContent& before_;
  std::string_view textName_;
};

void OutlineTag::updateText() {
  const bool hasTitle = row_.attributes().find("title") != nullptr;
  textName_ = textName(tag_.find("text") || !tag_.find("title") || hasTitle);
  const std::string& plain = row_.text().string();
  if (tag_.find(textName_) || hasTitle || !plain.empty()) tag_.set(textName_, plain);
  if (row_.text() == before_.text) return;
  const auto markdown = tag_.find("vell-text");
  setOrRemove("vell-text",
              row_.text().isPlain() ? "" : rewriteInline(markdown ? tag_.value(*markdown) : "", row_.text()));
}

void OutlineTag::updateType() {
  if (row_.type() == before_.type) return;
  setOrRemove("vell-type", row_.type() == RowType::body ? "" : std::string(name(row_.type())));
}

/// An attribute keeps its place as long as none that is not yet written belongs before it.
void OutlineTag::updateAttributes() {
  const Attributes& now = row_.attributes();
  if (now == before_.attributes) return;
  std::size_t written = 0;
  std::size_t diverted = 0;
  for (std::size_t index = 0; index < tag_.size(); ++index) {
    const std::string_view name = tag_.name(index);
    if (const std::size_t number = divertedNumber(name)) {
      const std::size_t end = updateDiverted(index, written);
      if (end > written) diverted = std::max(diverted, number);
      written = end;
    } else if (name == textName_ || isContentName(name) || isNamespaceName(name)) {
      continue;
    } else if (written < now.size() && now.begin()[written].key == name) {
      tag_.set(index, now.begin()[written++].value);
    } else {
      tag_.remove(index);
    }
  }
  for (const Attribute& entry : xmlAttributes(now, written, diverted)) tag_.append(entry.key, entry.value);
}

/// Returns how many attributes are written with those that the XML attribute now holds.
std::size_t OutlineTag::updateDiverted(std::size_t index, std::size_t from) {
  const Attributes held = readAttributes(tag_.value(index));
  const Attributes& now = row_.attributes();
  Attributes kept;
  for (const Attribute& entry : held) {
    const std::size_t next = from + kept.size();
    if (next < now.size() && now.begin()[next].key == entry.key) kept.set(entry.key, now.begin()[next].value);
  }
  if (kept.empty()) {
    tag_.remove(index);
  } else if (kept != held) {
    std::string json;
    json::Writer writer(json);
    writeAttributes(writer, kept);
    tag_.set(index, json);
  }
  return from + kept.size();
}

void OutlineTag::updateTimes() {
  if (row_.modified() == before_.modified) return;
  if (tag_.find("vell-modified") || row_.modified() != row_.created())
    tag_.set("vell-modified", document::formatTimestamp(row_.modified()));
}

class OpmlUpdate : public TreeUpdate {
 public:
  explicit OpmlUpdate(const Outline& outline)
      : TreeUpdate(outline, false),
        head_(slice(0, source_.find(outline.root().id())->begin)),
        tellsTimes_(head_.find("<vell-created") != head_.npos),
        isAscii_(declaresOtherEncoding(head_)) {}

 private:
  std::string changedHead() const override;
  OwnText render(const Row& row, const SourceSpan* span, std::string_view indent) override;
  std::string childIndent(const Row& row, const SourceSpan* span, std::string_view indent) const override;
  std::string closeIndent(const Row&, const SourceSpan*, std::string_view indent) const override {
    return std::string(indent);
  }
  std::string_view contentOf(std::string_view separator) const override {
    return separator.substr(0, separator.find_last_not_of(" \t\r\n") + 1);
  }
  std::size_t trailEnd(std::size_t rowEnd) const override;
  std::string separator(std::string_view lead, bool) const override { return std::string(lead); }

  std::string_view head_;
  bool tellsTimes_;
  bool isAscii_;
};

/// Only the outline's own id changes, and only where the source has one.
std::string OpmlUpdate::changedHead() const {
  const std::string& id = outline_.persistentId();
  if (id == source_.document().persistentId || source_.document().persistentId.empty()) return {};
  const std::size_t tag = head_.find("<vell-id");
  const std::size_t begin = tag == head_.npos ? tag : head_.find('>', tag) + 1;
  if (begin == head_.npos) return {};
  std::string head(head_.substr(0, begin));
  appendXml(head, id, {.isAscii = isAscii_});
  return head.append(head_.substr(head_.find('<', begin)));
}

TreeUpdate::OwnText OpmlUpdate::render(const Row& row, const SourceSpan* span, std::string_view) {
  const bool opens = row.firstChild() || (span && span->closeEnd != 0);
  OwnText own;
  if (!span) {
    appendOutlineTag(own.open, xmlAttributes(row, outline_.created(), tellsTimes_), isAscii_);
    own.open += opens ? ">" : "/>";
  } else {
    const std::string_view tag = slice(span->begin, span->end);
    const RowContent* before = source_.original(row.id());
    own.open = before ? OutlineTag(tag, isAscii_, row, *before).text(tellsTimes_, opens)
                      : XmlTag(tag, isAscii_).text(opens);
  }
  if (!opens) return own;
  if (span && span->closeEnd != 0) {
    own.close = slice(span->closeBegin, span->closeEnd);
  } else {
    own.close = &row == &outline_.root() ? "</body>" : endTag;
  }
  return own;
}

/// Deeper by what the rows of the file are, and not at all where it has no lines.
std::string OpmlUpdate::childIndent(const Row&, const SourceSpan*, std::string_view indent) const {
  std::string result(indent);
  if (indent.find('\n') == indent.npos || indent.size() > maxIndent) return result;
  const SessionId root = outline_.root().id();
  for (SessionId id = root + 1; const SourceSpan* span = source_.find(id); ++id) {
    const std::string_view parent = indentAt(source_.find(span->parent)->begin);
    const std::string_view own = indentAt(span->begin);
    if (own.size() > parent.size() && own.starts_with(parent) && parent.find('\n') != parent.npos)
      return result.append(own.substr(parent.size()));
    if (id - root == 1000) break;
  }
  return result.append(indent.ends_with('\t') ? "\t" : "  ");
}

std::size_t OpmlUpdate::trailEnd(std::size_t rowEnd) const {
  const std::string_view behind = std::string_view(source_.text()).substr(rowEnd);
  const std::size_t begin = std::min(behind.find_first_not_of(" \t"), behind.size());
  if (!behind.substr(begin).starts_with("<!--")) return rowEnd;
  return rowEnd + behind.find("-->", begin) + 3;
}

}  // namespace

FileText updateOpml(const Outline& outline) { return OpmlUpdate(outline).write(); }

}  // namespace vell::formats

#include <array>
#include <span>
#include <vector>

#include "formats/attribute_list.h"
#include "formats/inline_markdown.h"

namespace vell::formats {
namespace {

/// Styles that have a mark, the outer ones first; all others are written behind brackets.
constexpr std::array<std::string_view, 4> markedKeys = {"strong", "mark", "s", "em"};

/// Where a stretch of literal text has no markup beside it.
struct LineEdges {
  bool lineStart;
  bool lineEnd;
};

/// Writes literal text so that none of it is read as markup; beside markup its ends are escaped with more
/// care.
class LiteralWriter {
 public:
  LiteralWriter(std::string& out, std::string_view text, LineEdges edges)
      : out_(out), text_(text), edges_(edges), alone_(edges.lineStart && edges.lineEnd) {}

  void write() {
    while (at_ < text_.size()) step();
  }

 private:
  void step();
  void copyWords();
  void writeMarks();
  bool marksAreHarmless(std::size_t length) const;
  bool needsBackslash(char c) const;
  bool isLineEdge() const {
    return (edges_.lineStart && at_ == 0) || (edges_.lineEnd && at_ + 1 == text_.size());
  }
  char next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : '\0'; }

  std::string& out_;
  std::string_view text_;
  LineEdges edges_;
  bool alone_;
  std::size_t at_ = 0;
};

void LiteralWriter::step() {
  const char c = text_[at_];
  if (isWordByte(c)) return copyWords();
  if (c == '*' || c == '_' || c == '~' || c == '=') return writeMarks();
  const bool isEndBlank = isBlank(c) && isLineEdge();
  if ((isControl(c) && c != '\t') || isEndBlank) {
    appendReference(out_, c);
  } else {
    if (needsBackslash(c)) out_ += '\\';
    out_ += c;
  }
  ++at_;
}

void LiteralWriter::copyWords() {
  const std::size_t start = at_;
  while (at_ < text_.size() && isWordByte(text_[at_])) ++at_;
  out_ += text_.substr(start, at_ - start);
}

bool LiteralWriter::needsBackslash(char c) const {
  switch (c) {
    case '\\':
    case '`':
      return true;
    case '[':
      return !alone_;
    case ']':
      return !alone_ || next() == '(' || next() == '{';
    case '&':
      return !alone_ || next() == '#';
    case '{':
      return !alone_ && at_ == 0;
    case '}':
      return at_ + 1 == text_.size();
    default:
      return false;
  }
}

void LiteralWriter::writeMarks() {
  const std::size_t length = runLength(text_, at_);
  const bool harmless = marksAreHarmless(length);
  for (const std::size_t end = at_ + length; at_ < end; ++at_) {
    if (!harmless) out_ += '\\';
    out_ += text_[at_];
  }
}

bool LiteralWriter::marksAreHarmless(std::size_t length) const {
  const char c = text_[at_];
  const std::size_t end = at_ + length;
  const bool touchesEnd = at_ == 0 || end == text_.size();
  if ((c == '~' || c == '=') && length != 2) return alone_ || !touchesEnd;
  if (touchesEnd) return false;
  const char before = text_[at_ - 1];
  const char after = text_[end];
  if (c == '_' && isWordByte(before) && isWordByte(after)) return true;
  return before == ' ' && after == ' ' && at_ > 1 && end + 1 < text_.size();
}

/// Writes styled runs, neighbours of one style together.
class RunWriter {
 public:
  explicit RunWriter(const std::vector<Run>& runs) : runs_(runs) {}

  /// With marks where there are any; may come out ambiguous.
  std::string marked() {
    writeBracketGroups(runs_);
    return std::move(out_);
  }
  /// Every run behind brackets of its own.
  std::string bracketed() {
    for (const Run& run : runs_) {
      if (run.attrs.empty()) {
        writeLiteral(run);
      } else {
        out_ += '[';
        writeLiteral(run);
        out_ += ']';
        writeList(run.attrs);
      }
    }
    return std::move(out_);
  }

 private:
  using Runs = std::span<const Run>;

  static bool isMarked(const Attribute& entry) {
    return entry.value.empty() && (entry.key == "code" || !markOf(entry.key).empty());
  }
  static Attributes bracketStyle(const Run& run);
  static bool has(const Run& run, std::string_view key);
  void writeBracketGroups(Runs runs);
  void writeMarkGroups(Runs runs, std::size_t level);
  void writeLeaf(const Run& run);
  void writeLiteral(const Run& run);
  void writeCode(std::string_view code);
  void writeTail(Attributes attrs);
  void writeList(const Attributes& attrs);

  const std::vector<Run>& runs_;
  std::string out_;
};

Attributes RunWriter::bracketStyle(const Run& run) {
  Attributes style;
  for (const Attribute& entry : run.attrs) {
    if (!isMarked(entry)) style.set(entry.key, entry.value);
  }
  return style;
}

bool RunWriter::has(const Run& run, std::string_view key) {
  const std::string* value = run.attrs.find(key);
  return value && value->empty();
}

void RunWriter::writeBracketGroups(Runs runs) {
  while (!runs.empty()) {
    const Attributes style = bracketStyle(runs.front());
    std::size_t count = 1;
    while (count < runs.size() && bracketStyle(runs[count]) == style) ++count;
    if (!style.empty()) out_ += '[';
    writeMarkGroups(runs.first(count), 0);
    if (!style.empty()) {
      out_ += ']';
      writeTail(style);
    }
    runs = runs.subspan(count);
  }
}

void RunWriter::writeMarkGroups(Runs runs, std::size_t level) {
  if (level == markedKeys.size()) {
    for (const Run& run : runs) writeLeaf(run);
    return;
  }
  const std::string_view key = markedKeys[level];
  while (!runs.empty()) {
    const bool marked = has(runs.front(), key);
    std::size_t count = 1;
    while (count < runs.size() && has(runs[count], key) == marked) ++count;
    if (marked) out_ += markOf(key);
    writeMarkGroups(runs.first(count), level + 1);
    if (marked) out_ += markOf(key);
    runs = runs.subspan(count);
  }
}

void RunWriter::writeLeaf(const Run& run) {
  if (has(run, "code")) {
    writeCode(run.string);
  } else {
    writeLiteral(run);
  }
}

void RunWriter::writeLiteral(const Run& run) {
  const bool styled = !run.attrs.empty();
  const LineEdges edges{!styled && &run == &runs_.front(), !styled && &run == &runs_.back()};
  LiteralWriter(out_, run.string, edges).write();
}

void RunWriter::writeCode(std::string_view code) {
  std::size_t longest = 0;
  for (std::size_t at = 0; at < code.size(); at += runLength(code, at)) {
    if (code[at] == '`') longest = std::max(longest, runLength(code, at));
  }
  const std::string fence(longest + 1, '`');
  const bool padded =
      code.front() == '`' || code.back() == '`' || (code.front() == ' ' && code.back() == ' ');
  const std::string_view pad = padded ? " " : "";
  out_ += fence;
  out_ += pad;
  out_ += code;
  out_ += pad;
  out_ += fence;
}

/// A plain web address goes in parentheses, everything else in a list.
void RunWriter::writeTail(Attributes attrs) {
  const std::string* target = attrs.find("a");
  if (target && target->find_first_of(" \t\n\r<>()[]\\\"") == std::string::npos) {
    out_ += '(';
    out_ += *target;
    out_ += ')';
    attrs.remove("a");
  }
  if (!attrs.empty()) writeList(attrs);
}

void RunWriter::writeList(const Attributes& attrs) {
  char before = '{';
  for (const Attribute& entry : attrs) {
    out_ += before;
    appendListItem(out_, entry.key, entry.value);
    before = ' ';
  }
  out_ += '}';
}

bool hasControl(std::string_view text) {
  for (const char c : text) {
    if (isControl(c)) return true;
  }
  return false;
}

}  // namespace

void appendInline(std::string& out, const Text& text) {
  if (text.isPlain()) return LiteralWriter(out, text.string(), {true, true}).write();
  const std::vector<Run> runs = text.runs();
  const std::string marked = RunWriter(runs).marked();
  // Marks that touch, or that stand beside blanks or within words, can come out ambiguous: reading back
  // tells.
  const bool exact = !hasControl(marked) && parseInline(marked) == text;
  out += exact ? marked : RunWriter(runs).bracketed();
}

std::string rewriteInline(std::string_view source, const Text& now) {
  if (parseInline(source) == now) return std::string(source);
  std::string rendered;
  appendInline(rendered, now);
  return rendered;
}

}  // namespace vell::formats

#include "formats/inline_writer.h"

#include <algorithm>
#include <array>

#include "formats/attribute_list.h"
#include "formats/inline_delimiters.h"
#include "formats/inline_units.h"

namespace vell::formats {
namespace {

/// Styles that have a mark, the outer ones first; all others are written behind brackets.
constexpr std::array<std::string_view, 4> markedKeys = {"strong", "mark", "s", "em"};

class RangeWriter {
 public:
  using Ranges = std::span<const StyledRange>;

  RangeWriter(Draft& draft, std::string_view text, Ranges ranges, StyleForm form)
      : draft_(draft), text_(text), ranges_(ranges), form_(form) {}

  void write() { writeBracketGroups(ranges_); }

 private:
  bool isMarked(const Attribute& entry) const;
  Attributes bracketStyle(const StyledRange& range) const;
  static bool has(const StyledRange& range, std::string_view key);
  std::string_view markFor(std::size_t level, Ranges group) const;
  bool markupFollows(std::size_t level, Ranges group) const;
  void writeBracketGroups(Ranges ranges);
  void writeMarkGroups(Ranges ranges, std::size_t level);
  void writeLeaf(const StyledRange& range);
  bool isAutolink(Ranges group, const Attributes& style) const;
  void writeCode(std::string_view code);
  void writeTail(Attributes style);
  void writeList(const Attributes& style);

  Draft& draft_;
  std::string_view text_;
  Ranges ranges_;
  StyleForm form_;
};

bool RangeWriter::isMarked(const Attribute& entry) const {
  return form_ == StyleForm::marks && entry.value.empty() &&
         (entry.key == "code" || !markOf(entry.key).empty());
}

Attributes RangeWriter::bracketStyle(const StyledRange& range) const {
  Attributes style;
  for (const Attribute& entry : range.style) {
    if (!isMarked(entry)) style.set(entry.key, entry.value);
  }
  return style;
}

bool RangeWriter::has(const StyledRange& range, std::string_view key) {
  const std::string* value = range.style.find(key);
  return value && value->empty();
}

void RangeWriter::writeBracketGroups(Ranges ranges) {
  while (!ranges.empty()) {
    const Attributes style = bracketStyle(ranges.front());
    std::size_t count = 1;
    while (form_ == StyleForm::marks && count < ranges.size() && bracketStyle(ranges[count]) == style)
      ++count;
    const Ranges group = ranges.first(count);
    if (isAutolink(group, style)) {
      draft_.addMarkup("<" + *style.find("a") + ">");
    } else if (style.empty()) {
      writeMarkGroups(group, 0);
    } else {
      draft_.addMarkup("[");
      writeMarkGroups(group, 0);
      draft_.addMarkup("]");
      writeTail(style);
    }
    ranges = ranges.subspan(count);
  }
}

/// A link that shows its own target.
bool RangeWriter::isAutolink(Ranges group, const Attributes& style) const {
  if (form_ != StyleForm::marks || group.size() != 1 || group.front().style != style || style.size() != 1)
    return false;
  const std::string* target = style.find("a");
  const StyledRange& range = group.front();
  return target && text_.substr(range.begin, range.end - range.begin) == *target &&
         autolinkTarget("<" + *target + ">") == *target;
}

/// The mark that can stand on both sides of the group; empty where none can, as beside a blank within it.
std::string_view RangeWriter::markFor(std::size_t level, Ranges group) const {
  const std::string_view key = markedKeys[level];
  const std::size_t begin = group.front().begin;
  const std::size_t end = group.back().end;
  const std::string& written = draft_.source();
  const CharacterClass before =
      written.empty() ? classBefore(text_, begin) : classBefore(written, written.size());
  const CharacterClass behind =
      markupFollows(level, group) ? CharacterClass::punctuation : classAt(text_, end);
  for (const std::string_view mark :
       {markOf(key), key == "em" ? std::string_view("*") : std::string_view()}) {
    if (mark.empty()) continue;
    const Flanks opening = flanksOf(mark.front(), before, classAt(text_, begin));
    const Flanks closing = flanksOf(mark.front(), classBefore(text_, end), behind);
    if (opening.canOpen && closing.canClose) return mark;
  }
  return {};
}

/// True where other styles begin behind the group, or end there that are written around it.
bool RangeWriter::markupFollows(std::size_t level, Ranges group) const {
  const StyledRange& last = group.back();
  if (&last == &ranges_.back()) return false;
  const Attributes& next = (&last + 1)->style;
  const auto isInner = [&](const Attribute& entry) {
    const auto place =
        std::find(markedKeys.begin() + static_cast<std::ptrdiff_t>(level), markedKeys.end(), entry.key);
    return isMarked(entry) && (entry.key == "code" || place != markedKeys.end());
  };
  const auto isIn = [](const Attributes& style, const Attribute& entry) {
    const std::string* value = style.find(entry.key);
    return value && *value == entry.value;
  };
  return std::any_of(next.begin(), next.end(),
                     [&](const Attribute& entry) { return !isIn(last.style, entry); }) ||
         std::any_of(last.style.begin(), last.style.end(),
                     [&](const Attribute& entry) { return !isInner(entry) && !isIn(next, entry); });
}

void RangeWriter::writeMarkGroups(Ranges ranges, std::size_t level) {
  if (level == markedKeys.size()) {
    for (const StyledRange& range : ranges) writeLeaf(range);
    return;
  }
  const std::string_view key = markedKeys[level];
  while (!ranges.empty()) {
    const bool marked = form_ == StyleForm::marks && has(ranges.front(), key);
    std::size_t count = 1;
    while (count < ranges.size() && has(ranges[count], key) == marked) ++count;
    const Ranges group = ranges.first(count);
    const std::string_view mark = marked ? markFor(level, group) : std::string_view();
    draft_.addMarkup(marked && mark.empty() ? "[" : mark);
    writeMarkGroups(group, level + 1);
    draft_.addMarkup(marked && mark.empty() ? "]" : mark);
    if (marked && mark.empty()) writeList({{std::string(key), ""}});
    ranges = ranges.subspan(count);
  }
}

void RangeWriter::writeLeaf(const StyledRange& range) {
  const std::string_view string = text_.substr(range.begin, range.end - range.begin);
  const auto isBad = [](char c) { return isControl(c) && c != '\t'; };
  if (form_ == StyleForm::brackets || !has(range, "code")) {
    draft_.addText(string);
  } else if (std::any_of(string.begin(), string.end(), isBad)) {
    draft_.addMarkup("[");
    draft_.addText(string);
    draft_.addMarkup("]");
    writeList({{"code", ""}});
  } else {
    writeCode(string);
  }
}

void RangeWriter::writeCode(std::string_view code) {
  std::size_t longest = 0;
  for (std::size_t at = 0; at < code.size(); at += runLength(code, at)) {
    if (code[at] == '`') longest = std::max(longest, runLength(code, at));
  }
  const std::string fence(longest + 1, '`');
  const bool padded =
      code.front() == '`' || code.back() == '`' || (code.front() == ' ' && code.back() == ' ');
  const std::string pad = padded ? " " : "";
  draft_.addMarkup(fence + pad);
  draft_.addMarkup(code);
  draft_.addMarkup(pad + fence);
}

/// A plain web address goes in parentheses, everything else in a list.
void RangeWriter::writeTail(Attributes style) {
  const std::string* target = style.find("a");
  if (target && target->find_first_of(" \t\n\r<>()[]\\\"&") == std::string::npos) {
    draft_.addMarkup("(" + *target + ")");
    style.remove("a");
  }
  if (!style.empty()) writeList(style);
}

void RangeWriter::writeList(const Attributes& style) {
  std::string list;
  for (const Attribute& entry : style) {
    list += list.empty() ? '{' : ' ';
    appendListItem(list, entry.key, entry.value);
  }
  draft_.addMarkup(list + "}");
}

/// True for text without anything that could be markup or stand in its way.
bool isPlainSource(std::string_view text) {
  if (text.empty()) return true;
  if (isBlank(text.front()) || isBlank(text.back()) || text.back() == '}') return false;
  for (const char c : text) {
    if (isControl(c) && c != '\t') return false;
    if (std::string_view("\\&`*_~=[<").find(c) != std::string_view::npos) return false;
  }
  return true;
}

}  // namespace

std::vector<StyledRange> rangesOf(const Text& text) {
  std::vector<StyledRange> ranges;
  std::size_t end = 0;
  text.forEachRun([&](std::string_view string, const Attributes& style) {
    ranges.push_back({end, end + string.size(), style});
    end += string.size();
  });
  return ranges;
}

void appendRanges(Draft& draft, std::string_view text, std::span<const StyledRange> ranges, StyleForm form) {
  RangeWriter(draft, text, ranges, form).write();
}

void appendInline(std::string& out, const Text& text) {
  if (text.isPlain() && isPlainSource(text.string())) return void(out += text.string());
  const std::vector<StyledRange> ranges = rangesOf(text);
  for (const StyleForm form : {StyleForm::marks, StyleForm::brackets}) {
    Draft draft;
    appendRanges(draft, text.string(), ranges, form);
    if (!draft.settle(text, LineFeeds::text) && form == StyleForm::marks) continue;
    out += draft.source();
    return;
  }
}

}  // namespace vell::formats

#include "formats/inline_writer.h"

#include <algorithm>
#include <array>
#include <bitset>

#include "formats/attribute_list.h"
#include "formats/inline_delimiters.h"
#include "formats/inline_units.h"

namespace vell::formats {
namespace {

/// Styles that have a mark; all others are written behind brackets. Where two hold for the same text the
/// first one is the outer.
constexpr std::array<std::string_view, 4> markedKeys = {"strong", "mark", "s", "em"};

/// True where each bracket has its other half.
bool bracketsPair(std::string_view text) {
  std::ptrdiff_t open = 0;
  for (const char c : text) {
    if (c == '[') ++open;
    if (c == ']' && --open < 0) return false;
  }
  return open == 0;
}

class RangeWriter {
 public:
  using Ranges = std::span<const StyledRange>;

  RangeWriter(Draft& draft, std::string_view text, Ranges ranges, StyleForm form)
      : draft_(draft), text_(text), ranges_(ranges), form_(form) {}

  void write() { writeGroups(ranges_, {}); }

 private:
  /// Styles that are open: a bit for each marked key, and one for what stands in brackets.
  using Styles = std::bitset<markedKeys.size() + 1>;
  static constexpr std::size_t strong = 0;
  static constexpr std::size_t bracket = markedKeys.size();

  bool isMarked(const Attribute& entry) const;
  Attributes bracketStyle(const StyledRange& range) const;
  bool has(const StyledRange& range, std::size_t style) const;
  std::size_t extentOf(std::size_t style, Ranges ranges) const;
  std::string_view markFor(std::size_t style, Ranges group, Styles open) const;
  bool markupFollows(Ranges group, Styles open) const;
  void writeGroups(Ranges ranges, Styles open);
  void writeGroup(std::size_t style, Ranges group, Styles open);
  void writeLeaf(const StyledRange& range);
  bool isAutolink(Ranges group) const;
  void writeText(std::string_view string);
  void writeCode(std::string_view code);
  void writeTail(Attributes style);
  void writeList(const Attributes& style);

  Draft& draft_;
  std::string_view text_;
  Ranges ranges_;
  StyleForm form_;
  // Where the open strong text begins and ends.
  std::size_t strongBegin_ = 0;
  std::size_t strongEnd_ = 0;
  bool escapesBrackets_ = false;
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

bool RangeWriter::has(const StyledRange& range, std::size_t style) const {
  if (style == bracket) return !bracketStyle(range).empty();
  const std::string* value = range.style.find(markedKeys[style]);
  return form_ == StyleForm::marks && value && value->empty();
}

/// How many of the ranges have that style in common, from the front.
std::size_t RangeWriter::extentOf(std::size_t style, Ranges ranges) const {
  if (!has(ranges.front(), style)) return 0;
  if (form_ == StyleForm::brackets) return 1;
  const Attributes inBrackets = style == bracket ? bracketStyle(ranges.front()) : Attributes();
  std::size_t count = 1;
  while (count < ranges.size() && has(ranges[count], style) &&
         (style != bracket || bracketStyle(ranges[count]) == inBrackets))
    ++count;
  return count;
}

/// What reaches furthest is the outer.
void RangeWriter::writeGroups(Ranges ranges, Styles open) {
  while (!ranges.empty()) {
    std::size_t outer = bracket;
    std::size_t count = open[bracket] ? 0 : extentOf(bracket, ranges);
    for (std::size_t style = 0; style < markedKeys.size(); ++style) {
      const std::size_t extent = open[style] ? 0 : extentOf(style, ranges);
      if (extent > count) outer = style, count = extent;
    }
    if (count == 0) {
      writeLeaf(ranges.front());
      count = 1;
    } else {
      writeGroup(outer, ranges.first(count), open);
    }
    ranges = ranges.subspan(count);
  }
}

void RangeWriter::writeGroup(std::size_t style, Ranges group, Styles open) {
  if (style == bracket && isAutolink(group))
    return draft_.addMarkup("<" + *group.front().style.find("a") + ">");
  const std::string_view mark = style == bracket ? std::string_view() : markFor(style, group, open);
  draft_.addMarkup(mark.empty() ? "[" : mark);
  const bool escaped = escapesBrackets_;
  const std::string_view string = text_.substr(group.front().begin, group.back().end - group.front().begin);
  if (mark.empty() && !bracketsPair(string)) escapesBrackets_ = true;
  if (style == strong) strongBegin_ = group.front().begin, strongEnd_ = group.back().end;
  writeGroups(group, open.set(style));
  escapesBrackets_ = escaped;
  draft_.addMarkup(mark.empty() ? "]" : mark);
  if (style == bracket) {
    writeTail(bracketStyle(group.front()));
  } else if (mark.empty()) {
    writeList({{std::string(markedKeys[style]), ""}});
  }
}

/// A link that shows its own target.
bool RangeWriter::isAutolink(Ranges group) const {
  const StyledRange& range = group.front();
  const std::string* target = range.style.find("a");
  return form_ == StyleForm::marks && group.size() == 1 && target && range.style.size() == 1 &&
         text_.substr(range.begin, range.end - range.begin) == *target &&
         autolinkTarget("<" + *target + ">") == *target;
}

/// The mark that can stand on both sides of the group; empty where none can, as beside a blank within it.
std::string_view RangeWriter::markFor(std::size_t style, Ranges group, Styles open) const {
  const std::string_view key = markedKeys[style];
  const std::size_t begin = group.front().begin;
  const std::size_t end = group.back().end;
  const std::string& written = draft_.source();
  CharacterClass before = written.empty() ? classBefore(text_, begin) : classBefore(written, written.size());
  CharacterClass behind = markupFollows(group, open) ? CharacterClass::punctuation : classAt(text_, end);
  // Stars side by side are one run, which has to stand by itself.
  if (open[strong] && strongBegin_ == begin) before = classBefore(text_, begin);
  if (open[strong] && strongEnd_ == end) behind = classAt(text_, end);
  for (const std::string_view mark : {markOf(key), std::string_view(key == "em" ? "*" : "")}) {
    if (mark.empty()) continue;
    const Flanks opening = flanksOf(mark.front(), before, classAt(text_, begin));
    const Flanks closing = flanksOf(mark.front(), classBefore(text_, end), behind);
    if (opening.canOpen && closing.canClose) return mark;
  }
  return {};
}

/// True where other styles begin behind the group, or end there that are written around it.
bool RangeWriter::markupFollows(Ranges group, Styles open) const {
  const Attributes& last = group.back().style;
  if (&group.back() == &ranges_.back()) return false;
  const Attributes& next = (&group.back() + 1)->style;
  const auto isIn = [](const Attributes& style, const Attribute& entry) {
    const std::string* value = style.find(entry.key);
    return value && *value == entry.value;
  };
  const auto isOuter = [&](const Attribute& entry) -> bool {
    const auto place = std::find(markedKeys.begin(), markedKeys.end(), entry.key);
    if (!isMarked(entry)) return open[bracket];
    return place != markedKeys.end() && open[static_cast<std::size_t>(place - markedKeys.begin())];
  };
  return std::any_of(next.begin(), next.end(), [&](const Attribute& entry) { return !isIn(last, entry); }) ||
         std::any_of(last.begin(), last.end(),
                     [&](const Attribute& entry) { return isOuter(entry) && !isIn(next, entry); });
}

void RangeWriter::writeLeaf(const StyledRange& range) {
  const std::string_view string = text_.substr(range.begin, range.end - range.begin);
  const auto isBad = [](char c) { return isControl(c) && c != '\t'; };
  const std::string* code = range.style.find("code");
  if (form_ == StyleForm::brackets || !code || !code->empty()) {
    writeText(string);
  } else if (std::any_of(string.begin(), string.end(), isBad)) {
    draft_.addMarkup("[");
    writeText(string);
    draft_.addMarkup("]");
    writeList({{"code", ""}});
  } else {
    writeCode(string);
  }
}

void RangeWriter::writeText(std::string_view string) {
  while (!string.empty()) {
    const std::size_t end =
        escapesBrackets_ ? std::min(string.find_first_of("[]"), string.size()) : string.size();
    draft_.addText(string.substr(0, end));
    if (end < string.size()) draft_.addMarkup(string[end] == '[' ? "\\[" : "\\]");
    string.remove_prefix(std::min(end + 1, string.size()));
  }
}

void RangeWriter::writeCode(std::string_view code) {
  std::size_t longest = 0;
  for (std::size_t at = 0; at < code.size(); at += runLength(code, at)) {
    if (code[at] == '`') longest = std::max(longest, runLength(code, at));
  }
  const std::string fence(longest + 1, '`');
  const bool losesBlanks =
      code.front() == ' ' && code.back() == ' ' && code.find_first_not_of(' ') != std::string_view::npos;
  const bool padded = code.front() == '`' || code.back() == '`' || losesBlanks;
  const std::string pad = padded ? " " : "";
  draft_.addMarkup(fence + pad);
  draft_.addMarkup(code);
  draft_.addMarkup(pad + fence);
}

/// A link's target and title go in parentheses where they need no escapes there, everything else in a list.
void RangeWriter::writeTail(Attributes style) {
  const auto fits = [](const std::string& value, std::string_view bad) {
    return std::none_of(value.begin(), value.end(), isControl) &&
           value.find_first_of(bad) == std::string::npos && value.find("&#") == std::string::npos;
  };
  const std::string* target = style.find("a");
  if (target && fits(*target, "<>\\")) {
    const bool isBare = !target->empty() && fits(*target, " ()[]\"");
    std::string link = isBare ? *target : "<" + *target + ">";
    const std::string* title = style.find("title");
    if (title && !title->empty() && fits(*title, "\"\\")) {
      link += " \"" + *title + "\"";
      style.remove("title");
    }
    draft_.addMarkup("(" + link + ")");
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

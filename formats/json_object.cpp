#include "formats/json_object.h"

#include <algorithm>

#include "json/escapes.h"

namespace vell::formats {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool breaksLine(std::string_view text) { return text.find('\n') != text.npos; }

/// The line break and the blanks at the end of the text; empty where no line begins with them.
std::string_view lastIndent(std::string_view text) {
  std::size_t line = text.rfind('\n');
  if (line == text.npos || text.find_first_not_of(blanks, line) != text.npos) return {};
  if (line > 0 && text[line - 1] == '\r') --line;
  return text.substr(line);
}

/// Bytes of the string that the text begins with.
std::size_t stringLength(std::string_view text) {
  std::size_t at = 1;
  while (text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return at + 1;
}

}  // namespace

void layOut(std::string& out, std::string_view compact, const JsonStyle& style, bool spreads,
            std::string_view indent) {
  std::string line(indent);
  const bool breaks = spreads && breaksLine(indent);
  for (std::size_t at = 0; at < compact.size(); ++at) {
    const char c = compact[at];
    const bool isEmpty = (c == '{' || c == '[') && (compact[at + 1] == '}' || compact[at + 1] == ']');
    if (c == '"') {
      const std::size_t length = stringLength(compact.substr(at));
      out += compact.substr(at, length);
      at += length - 1;
    } else if (isEmpty) {
      out += compact.substr(at++, 2);
    } else if (c == '{' || c == '[') {
      out += c;
      line += style.unit;
      if (breaks) out += line;
    } else if (c == '}' || c == ']') {
      line.resize(line.size() - style.unit.size());
      if (breaks) out += line;
      out += c;
    } else if (c == ',') {
      out += breaks ? c + line : style.comma;
    } else if (c == ':') {
      out += style.colon;
    } else {
      out += c;
    }
  }
}

std::string separatorLike(std::string_view separator, bool isFirst, const JsonStyle& style) {
  const std::size_t comma = separator.find(',');
  const bool hasComma = comma != separator.npos;
  if (isFirst) {
    if (hasComma) separator.remove_prefix(comma + 1);
    return hasComma && !breaksLine(separator) ? "" : std::string(separator);
  }
  if (hasComma) return std::string(separator);
  return breaksLine(separator) ? "," + std::string(separator) : style.comma;
}

JsonObject::JsonObject(std::string_view text, const JsonStyle& style, std::string_view indent)
    : document_(text), style_(style), indent_(indent) {
  for (json::Member& member : document_.root().members()) members_.push_back({std::move(member), 0});
  const std::string_view all = document_.text();
  std::size_t limit = all.rfind('}');
  for (auto part = members_.rbegin(); part != members_.rend(); ++part) {
    if (part != members_.rbegin()) limit = all.rfind(',', limit);
    part->end = all.find_last_not_of(blanks, limit - 1) + 1;
    limit = part->member.offset;
  }
}

std::string_view JsonObject::valueText(std::size_t index) const {
  return slice(value(index).offset(), members_[index].end);
}

std::string_view JsonObject::gapBefore(std::size_t index) const {
  const std::size_t begin = index == 0 ? document_.root().offset() + 1 : members_[index - 1].end;
  return slice(begin, members_[index].member.offset);
}

std::string_view JsonObject::indentOf(std::size_t index) const {
  const std::string_view indent = lastIndent(gapBefore(index));
  return indent.empty() ? std::string_view(indent_) : indent;
}

bool JsonObject::isSpread() const {
  return members_.empty() ? style_.spreadsObjects && breaksLine(indent_) : breaksLine(gapBefore(0));
}

std::optional<std::string> JsonObject::comma() const {
  for (std::size_t index = 1; index < size(); ++index) {
    if (!breaksLine(gapBefore(index))) return std::string(gapBefore(index));
  }
  return std::nullopt;
}

std::string JsonObject::colon() const {
  const json::Member& first = members_.front().member;
  const std::string_view name = slice(first.offset, first.value.offset());
  return std::string(name.substr(stringLength(name)));
}

std::optional<std::size_t> JsonObject::find(std::string_view key) const {
  for (std::size_t index = size(); index-- > 0;) {
    if (this->key(index) == key && !members_[index].isRemoved) return index;
  }
  return std::nullopt;
}

void JsonObject::set(std::size_t index, std::string_view compact) {
  const std::string_view before = valueText(index);
  const bool wasSpread = before.size() > 2 && (before.front() == '[' || before.front() == '{')
                             ? breaksLine(before)
                             : style_.spreadsValues;
  std::string now;
  layOut(now, compact, style_, wasSpread, indentOf(index));
  replace(index, std::move(now));
}

void JsonObject::append(std::string_view key, std::string_view compact) {
  std::string value;
  const std::string gap = newGap();
  layOut(value, compact, style_, style_.spreadsValues, breaksLine(gap) ? lastIndent(gap) : indent_);
  added_.emplace_back(key, std::move(value));
}

void JsonObject::set(std::string_view key, std::string_view compact) {
  if (const auto index = find(key)) return set(*index, compact);
  append(key, compact);
}

void JsonObject::remove(std::string_view key) {
  while (const auto index = find(key)) remove(*index);
}

void JsonObject::appendList(std::string_view key) { list_ = key; }

/// What stands before a new member: what stands before the last one.
std::string JsonObject::newGap() const {
  if (!members_.empty()) return std::string(gapBefore(size() - 1));
  return isSpread() ? indent_ + style_.unit : "";
}

std::pair<std::string, std::string> JsonObject::split(std::string_view list) const {
  std::string open = "{";
  std::string close;
  std::string* out = &open;
  bool isFirst = true;
  const auto separate = [&](std::string_view gap) {
    *out += separatorLike(gap, std::exchange(isFirst, false), style_);
  };
  const auto add = [&] {
    for (const auto& [key, value] : added_) {
      separate(newGap());
      out->append(json::quoted(key)).append(style_.colon).append(value);
    }
  };
  const auto listed = list.empty() ? std::nullopt : find(list);
  const bool listIsLast = listed && *listed + 1 == size();
  for (std::size_t index = 0; index < size(); ++index) {
    const Part& part = members_[index];
    if (part.isRemoved) continue;
    if (listIsLast && index == *listed) add();
    separate(gapBefore(index));
    const std::size_t begin = part.member.value.offset();
    *out += slice(part.member.offset, begin);
    if (index == listed) {
      *out += '[';
      out = &close;
      *out += slice(begin + 1, part.end);
    } else {
      *out += part.now ? std::string_view(*part.now) : slice(begin, part.end);
    }
  }
  if (!listIsLast) add();
  if (!list_.empty()) {
    separate(newGap());
    out->append(json::quoted(list_)).append(style_.colon).append("[");
    out = &close;
    *out += ']';
  }
  if (members_.empty()) {
    if (open.size() > 1 && isSpread()) *out += indent_;
  } else {
    *out += slice(members_.back().end, document_.text().rfind('}'));
  }
  *out += '}';
  return {std::move(open), std::move(close)};
}

}  // namespace vell::formats

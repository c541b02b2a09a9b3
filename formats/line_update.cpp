#include "formats/line_update.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vell::formats {

std::string_view LineSource::head() const {
  const std::string_view text = source_.text();
  return source_.spans().empty() ? text : text.substr(0, source_.spans().front().begin);
}

std::string_view LineSource::tail() const {
  if (source_.spans().empty()) return {};
  return std::string_view(source_.text()).substr(source_.spans().back().end);
}

std::size_t LineSource::depth(SessionId row) const {
  const std::size_t begin = source_.find(row)->begin;
  std::size_t at = begin;
  while (at > 0 && source_.text()[at - 1] == '\t') --at;
  return begin - at;
}

std::string_view LineSource::lines(SessionId row) const {
  const SourceSpan& span = *source_.find(row);
  return std::string_view(source_.text()).substr(span.begin, span.end - span.begin);
}

std::string_view LineSource::stretch(SessionId first, SessionId last) const {
  const std::size_t begin = lineStart(first);
  return std::string_view(source_.text()).substr(begin, source_.find(last)->end - begin);
}

std::string_view LineSource::separator(SessionId row) const {
  const std::size_t begin = source_.find(row - 1)->end;
  return std::string_view(source_.text()).substr(begin, lineStart(row) - begin);
}

namespace {

std::size_t lineEnds(std::string_view separator) {
  const auto feeds = std::count(separator.begin(), separator.end(), '\n');
  const auto returns = std::count(separator.begin(), separator.end(), '\r');
  return static_cast<std::size_t>(std::max(feeds, returns));
}

/// `lines` with the tabs of its second line and those after it changed from one depth to another.
std::string indented(std::string_view lines, std::size_t from, std::size_t to) {
  if (from == to) return std::string(lines);
  std::string out;
  std::size_t at = std::min(lines.find('\n'), lines.size());
  out += lines.substr(0, at);
  while (at < lines.size()) {
    const std::size_t end = std::min(lines.find('\n', at + 1), lines.size());
    std::string_view line = lines.substr(at + 1, end - at - 1);
    const std::size_t tabs = std::min(line.find_first_not_of('\t'), line.size());
    line.remove_prefix(std::min(tabs, from));
    out += '\n';
    if (!line.empty() && line != "\r") out.append(to, '\t');
    out += line;
    at = end;
  }
  return out;
}

std::string withCarriageReturns(std::string_view lines) {
  std::string out;
  for (const char c : lines) {
    if (c == '\n' && !out.ends_with('\r')) out += '\r';
    out += c;
  }
  return out;
}

class LineUpdate {
 public:
  LineUpdate(const Outline& outline, std::string_view lineEnd, Times times, const LineRenderer& render)
      : outline_(outline), source_(*outline.source()), lineEnd_(lineEnd), times_(times), render_(render) {}

  std::string write(std::string head);

 private:
  /// Rows that followed each other in the source, too.
  struct Run {
    std::size_t begin;
    std::size_t end;

    std::size_t size() const { return end - begin; }
  };

  const Row& row(std::size_t index) const { return *rows_[index]; }
  std::size_t depth(std::size_t index) const { return rows_[index]->level() - 1; }
  bool follows(std::size_t index) const;
  bool isInPlace(std::size_t index) const;
  std::size_t copyRows(std::size_t index);
  void writeRow(std::size_t index);

  std::string separatorBefore(std::size_t index);
  std::string separatorAtGap(std::size_t index) const;
  Run runOf(std::size_t index) const;
  std::string usualSeparator(std::size_t index) const;
  void append(std::string_view text);

  const Outline& outline_;
  LineSource source_;
  std::string_view lineEnd_;
  Times times_;
  const LineRenderer& render_;
  std::span<const Row* const> rows_;  ///< in order
  std::vector<std::string> chosen_;   ///< by depth: the last separator that was not copied
  std::string out_;
};

std::string LineUpdate::write(std::string head) {
  outline_.number();
  rows_ = std::span(outline_.rowsInOrder()).subspan(1);
  const std::size_t bodyFrom = head.size();
  out_ = std::move(head);
  const std::size_t size = outline_.source()->text().size();
  out_.reserve(size + size / 8);
  for (std::size_t index = 0; index < rows_.size();) {
    if (index > 0) append(separatorBefore(index));
    if (isInPlace(index)) {
      index = copyRows(index);
    } else {
      writeRow(index++);
    }
  }
  if (rows_.empty()) return std::move(out_);
  // A last row without any bytes is one only with a line end.
  const bool needsEnd =
      source_.isEmpty() || out_.size() == bodyFrom || out_.back() == '\n' || out_.back() == '\r';
  append(source_.tail().empty() && needsEnd ? lineEnd_ : source_.tail());
  return std::move(out_);
}

/// Between a carriage return and a line feed that did not belong together, a second carriage return keeps
/// them apart.
void LineUpdate::append(std::string_view text) {
  if (out_.ends_with('\r') && text.starts_with('\n')) out_ += '\r';
  out_ += text;
}

/// True if the row before was the one before it in the source.
bool LineUpdate::follows(std::size_t index) const {
  return source_.holds(row(index).id()) && !source_.isFirst(row(index).id()) &&
         row(index - 1).id() == row(index).id() - 1;
}

/// True if the row says what it said and is as deep as it was.
bool LineUpdate::isInPlace(std::size_t index) const {
  return isAsRead(outline_, row(index), times_) && source_.depth(row(index).id()) == depth(index);
}

/// Copies the longest stretch that begins with the row; returns the index behind it.
std::size_t LineUpdate::copyRows(std::size_t index) {
  // Rows lie far apart in memory. To ask for them ahead makes this a third faster with a million of them.
  constexpr std::size_t ahead = 8;
  std::size_t end = index + 1;
  for (; end < rows_.size() && follows(end) && isInPlace(end); ++end)
    if (end + ahead < rows_.size()) __builtin_prefetch(rows_[end + ahead]);
  append(source_.stretch(row(index).id(), row(end - 1).id()));
  return end;
}

void LineUpdate::writeRow(std::size_t index) {
  const Row& row = this->row(index);
  const std::size_t depth = this->depth(index);
  out_.append(depth, '\t');
  std::string lines;
  if (source_.holds(row.id())) lines = indented(source_.lines(row.id()), source_.depth(row.id()), depth);
  std::string rendered;
  if (isAsRead(outline_, row, times_)) {
    rendered = std::move(lines);
  } else {
    render_({row, depth, lines}, rendered);
  }
  append(lineEnd_ == "\r\n" ? withCarriageReturns(rendered) : rendered);
}

std::string LineUpdate::separatorBefore(std::size_t index) {
  if (follows(index)) return std::string(source_.separator(row(index).id()));
  std::string separator = separatorAtGap(index);
  const std::size_t depth = this->depth(index);
  if (chosen_.size() <= depth) chosen_.resize(depth + 1, std::string(lineEnd_));
  chosen_[depth] = separator;
  return separator;
}

/// The separator between two rows that did not follow each other. Where rows between them are gone it is the
/// longer of those around the gap; a row that came here from elsewhere gets the usual one, and the row behind
/// it keeps its own. Of two stretches of rows that changed their order the shorter one is taken to have
/// moved.
std::string LineUpdate::separatorAtGap(std::size_t index) const {
  const SessionId before = row(index - 1).id();
  const SessionId here = row(index).id();
  if (!source_.holds(here) || source_.isFirst(here)) return usualSeparator(index);
  const std::string own(source_.separator(here));
  if (!source_.holds(before)) return own;
  const Run left = runOf(index - 1);
  const Run right = runOf(index);
  if (before > here) return left.size() < right.size() ? own : usualSeparator(index);
  const auto isFromBetween = [&](std::size_t other) {
    return source_.holds(row(other).id()) && before < row(other).id() && row(other).id() < here;
  };
  if (left.begin > 0 && isFromBetween(left.begin - 1) && left.size() < runOf(left.begin - 1).size())
    return own;
  if (right.end < rows_.size() && isFromBetween(right.end) && right.size() < runOf(right.end).size()) {
    return usualSeparator(index);
  }
  const std::string behind(source_.separator(before + 1));
  return lineEnds(behind) > lineEnds(own) ? behind : own;
}

LineUpdate::Run LineUpdate::runOf(std::size_t index) const {
  Run run{index, index + 1};
  while (run.begin > 0 && follows(run.begin)) --run.begin;
  while (run.end < rows_.size() && follows(run.end)) ++run.end;
  return run;
}

/// One line end, or two where the sibling beside the row has a blank line before it.
std::string LineUpdate::usualSeparator(std::size_t index) const {
  const Row& row = this->row(index);
  const std::size_t depth = this->depth(index);
  const std::string lineEnd(lineEnd_);
  const auto like = [&](SessionId sibling) {
    return lineEnds(source_.separator(sibling)) > 1 ? lineEnd + lineEnd : lineEnd;
  };
  const auto canTell = [&](const Row* sibling) {
    return sibling && source_.holds(sibling->id()) && !source_.isFirst(sibling->id());
  };
  const Row* previous = row.previous();
  if (previous && !source_.holds(previous->id())) return depth < chosen_.size() ? chosen_[depth] : lineEnd;
  if (canTell(previous)) {
    const bool wasFirstChild = source_.depth(previous->id() - 1) < source_.depth(previous->id());
    if (!wasFirstChild) return like(previous->id());
  }
  return canTell(row.next()) ? like(row.next()->id()) : lineEnd;
}

}  // namespace

std::string updateLines(const Outline& outline, std::string head, std::string_view lineEnd, Times times,
                        const LineRenderer& render) {
  return LineUpdate(outline, lineEnd, times, render).write(std::move(head));
}

}  // namespace vell::formats

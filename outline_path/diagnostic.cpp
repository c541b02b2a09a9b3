#include "outline_path/diagnostic.h"

#include <algorithm>
#include <array>

#include "outline_path/characters.h"
#include "outline_path/parse_state.h"
#include "text/display_width.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

constexpr std::size_t expectedShown = 5;
constexpr std::size_t foundShown = 24;
/// Columns of a long line shown on either side of the caret.
constexpr std::size_t context = 36;

constexpr std::array<std::string_view, expectedCount> descriptions{
    "a path",
    "a step (*, task, @name)",
    "a type test or a predicate",
    "a value",
    "a predicate (@name, \"text\", @name = \"value\")",
    "an attribute name",
    "a variable name",
    "an integer",
    "something to divide by",
    "a blank",
    "a relation (=, <, contains)",
    "a closing double quote",
    "an escape (one of \" \\ / b f n r t u)",
    "four hexadecimal digits",
    "the second half of a surrogate pair",
    "the first half of the surrogate pair before it",
    "a modifier (s, i, n, d)",
    "\"l\"",
    "\"]\"",
    "\":\"",
    "\"]\"",
    "\",\" or \")\"",
    "\")\"",
    "\"and\" or \"or\"",
    "\"/\" and a step",
    "a slice ([0], [1:5])",
    "\"union\", \"except\" or \"intersect\"",
    "an arithmetic sign",
    "the end of the input",
};

/// The line that the error is in.
struct Line {
  std::string_view text;
  std::size_t number;
  /// The offset of the error within it.
  std::size_t index;
};

Line lineAt(std::string_view text, std::size_t index) {
  const std::string_view before = text.substr(0, index);
  const std::size_t begin = before.rfind('\n') + 1;
  const std::size_t end = std::min(text.find('\n', index), text.size());
  const auto breaks = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  return {text.substr(begin, end - begin), breaks + 1, index - begin};
}

std::string placeOf(const Line& line, std::string_view text) {
  std::size_t column = 1;
  for (std::size_t at = 0; at < line.index; ++column) at += text::firstCodePoint(line.text.substr(at)).length;
  const std::string place = "column " + std::to_string(column);
  const bool isOneLine = text.find('\n') == std::string_view::npos;
  return isOneLine ? place : "line " + std::to_string(line.number) + ", " + place;
}

std::string found(std::string_view rest) {
  if (rest.empty()) return "end of input";
  if (rest.front() == '\n' || rest.front() == '\r') return "line end";
  if (isBlank(rest.front())) return "blank";
  const std::size_t word = wordLength(rest);
  std::size_t length = word == 0 ? text::firstCodePoint(rest).length : 0;
  while (length < word && length < foundShown) length += text::firstCodePoint(rest.substr(length)).length;
  return '"' + std::string(rest.substr(0, length)) + (length < word ? "…\"" : "\"");
}

std::string expectation(const ExpectedSet& expected) {
  const std::vector<Expected> all = expected.inOrder();
  const std::size_t shown = std::min(all.size(), expectedShown);
  if (shown == 2)
    return ", expected " + std::string(describe(all[0])) + " or " + std::string(describe(all[1]));
  std::string text;
  for (std::size_t i = 0; i < shown; ++i) {
    if (i != 0) text += i + 1 == shown ? ", or " : ", ";
    text += describe(all[i]);
  }
  return text.empty() ? text : ", expected " + text;
}

std::string message(const Diagnostic& diagnostic, std::string_view text) {
  using Kind = Diagnostic::Kind;
  const std::string_view rest = text.substr(diagnostic.index);
  const std::string expected = expectation(diagnostic.expected);
  switch (diagnostic.kind) {
    case Kind::leftover:
      return "expected input to be consumed, found " + found(rest) + expected;
    case Kind::unexpected:
      return "unexpected " + found(rest) + expected;
    case Kind::notAnInteger:
      return "failed to process \"Int\", found " + found(rest) + expected;
    case Kind::loneWord:
      return found(rest) + " alone is not a path";
    case Kind::tooDeep:
      return "nested more than " + std::to_string(maxDepth) + " levels deep";
    case Kind::invalidUtf8:
      return "invalid UTF-8 at byte " + std::to_string(diagnostic.index);
  }
  return expected;
}

/// The line, cut to the neighbourhood of the error where it is long, and the caret below.
std::string picture(const Line& line) {
  const text::DisplayText before = text::displayText(line.text.substr(0, line.index));
  const text::DisplayText after = text::displayText(line.text.substr(line.index));
  const text::DisplayText left = text::lastColumns(before, context);
  const text::DisplayText right = text::firstColumns(after, context);
  return "  " + left.text + right.text + "\n  " + std::string(left.width, ' ') + "^\n";
}

}  // namespace

std::vector<Expected> ExpectedSet::inOrder() const {
  std::vector<Expected> all;
  for (std::size_t i = 0; i < bits_.size(); ++i) {
    const auto expected = static_cast<Expected>(i);
    const bool isImplied = (expected == Expected::predicate && contains(Expected::filter)) ||
                           (expected == Expected::filter && contains(Expected::step));
    if (contains(expected) && !isImplied) all.push_back(expected);
  }
  return all;
}

std::string_view describe(Expected expected) { return descriptions[static_cast<std::size_t>(expected)]; }

std::string render(const Diagnostic& diagnostic, std::string_view text) {
  const Line line = lineAt(text, diagnostic.index);
  std::string out = "At " + placeOf(line, text) + ": " + message(diagnostic, text) + ".\n\n" + picture(line);
  const std::string hint = hintFor(diagnostic, text);
  if (!hint.empty()) out += "\nHint: " + hint + "\n";
  return out;
}

}  // namespace vell::outline_path

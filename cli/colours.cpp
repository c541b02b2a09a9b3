#include "cli/colours.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace vell::cli {
namespace {

// jq's defaults.
constexpr const char* nullColour = "\x1b[0;90m";
constexpr const char* plainColour = "\x1b[0;39m";
constexpr const char* stringColour = "\x1b[0;32m";
constexpr const char* bracketColour = "\x1b[1;39m";
constexpr const char* keyColour = "\x1b[34;1m";
constexpr std::string_view noColour = "\x1b[0m";

constexpr std::string_view hintColour = "\x1b[36m";
constexpr std::string_view caretColour = "\x1b[1;32m";

struct Label {
  std::string_view text;
  std::string_view colour;
};
constexpr Label labels[] = {
    {"Error:", "\x1b[1;31m"}, {"warning:", "\x1b[1;33m"}, {"Note from Vell:", "\x1b[1;36m"},
    {"Hint:", "\x1b[1;36m"},  {"hint:", "\x1b[1;36m"},
};

std::string painted(std::string_view text, std::string_view colour) {
  return std::string(colour).append(text).append(noColour);
}

/// Whether the line points at something in the line above.
bool isCaretLine(std::string_view line) {
  return line.find('^') != line.npos && line.find_first_not_of(" ^~") == line.npos;
}

/// Where a hint stands in the line, from "did you mean" to the question mark.
std::string_view hintIn(std::string_view line) {
  const std::size_t begin = std::min(line.find("Did you mean "), line.find("did you mean "));
  if (begin == line.npos) return {};
  const std::size_t end = line.find('?', begin);
  return line.substr(begin, end == line.npos ? end : end + 1 - begin);
}

std::string colouredLine(std::string_view line) {
  if (isCaretLine(line)) return painted(line, caretColour);
  std::string out;
  for (const auto& [text, colour] : labels) {
    if (!line.starts_with(text)) continue;
    out = painted(text, colour);
    line.remove_prefix(text.size());
  }
  if (const std::string_view hint = hintIn(line); !hint.empty()) {
    const auto before = static_cast<std::size_t>(hint.data() - line.data());
    out.append(line.substr(0, before)).append(painted(hint, hintColour));
    line.remove_prefix(before + hint.size());
  }
  return out.append(line);
}

std::string_view variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool isCapableTerminal(int descriptor) {
  const std::string_view kind = variable("TERM");
  return !kind.empty() && kind != "dumb" && ::isatty(descriptor) == 1;
}

bool takesColours(int descriptor) { return variable("NO_COLOR").empty() && isCapableTerminal(descriptor); }

void JsonColours::finish() {
  passAll();
  if (colour_ != nullptr) out_.write(noColour);
  colour_ = nullptr;
}

void JsonColours::pass(std::string_view part) {
  for (const char c : part) paint(c);
}

void JsonColours::paint(char c) {
  if (inString_) {
    inString_ = escaped_ || c != '"';
    escaped_ = !escaped_ && c == '\\';
    return out_.put(c);
  }
  const bool isNumber = c == '-' || (c >= '0' && c <= '9');
  const bool isBracket = std::string_view("{}[],:").find(c) != std::string_view::npos;
  if (c == '"') {
    inString_ = true;
    use(keyComes_ ? keyColour : stringColour);
  } else if (isBracket) {
    use(bracketColour);
    if (c == '{' || c == '[') inObject_.push_back(c == '{');
    if ((c == '}' || c == ']') && !inObject_.empty()) inObject_.pop_back();
    keyComes_ = (c == '{' || c == ',') && !inObject_.empty() && inObject_.back();
  } else if (c == 'n') {
    use(nullColour);
  } else if (c == 't' || c == 'f' || isNumber) {
    use(plainColour);
  }
  out_.put(c);
}

void JsonColours::use(const char* colour) {
  if (colour_ == colour) return;
  colour_ = colour;
  out_.write(colour);
}

std::string colouredMessage(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    out += colouredLine(text.substr(0, end));
    text.remove_prefix(end);
    if (text.empty()) break;
    out += '\n';
    text.remove_prefix(1);
  }
  return out;
}

}  // namespace vell::cli

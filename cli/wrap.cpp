#include "cli/wrap.h"

#include <algorithm>

#include "text/display_width.h"

namespace vell::cli {
namespace {

/// Takes everything up to the separator, and the separator, off the front.
std::string_view takeUntil(std::string_view& text, char separator) {
  const std::string_view front = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(front.size() + 1, text.size()));
  return front;
}

void startLine(std::string& out, std::size_t indent) {
  out += '\n';
  out.append(indent, ' ');
}

void appendLine(std::string& out, std::string_view line, std::size_t indent, std::size_t column) {
  bool first = true;
  while (!line.empty()) {
    const std::string_view word = takeUntil(line, ' ');
    if (word.empty()) continue;
    const bool fits = column + (first ? 0 : 1) + text::displayWidth(word) <= screenWidth;
    if (!first && !fits) {
      startLine(out, indent);
      column = indent;
    } else if (!first) {
      out += ' ';
      ++column;
    }
    out += word;
    column += text::displayWidth(word);
    first = false;
  }
}

}  // namespace

void appendWrapped(std::string& out, std::string_view text, std::size_t indent, std::size_t column) {
  bool first = true;
  while (!text.empty()) {
    const std::string_view line = takeUntil(text, '\n');
    const std::size_t own = std::min(line.find_first_not_of(' '), line.size());
    if (!first) {
      out += '\n';
      column = 0;
    }
    first = false;
    if (line.empty()) continue;
    const std::size_t start = std::max(column, indent + own);
    out.append(start - column, ' ');
    appendLine(out, line.substr(own), indent + own, start);
  }
}

std::string paragraph(std::string_view text, std::size_t indent) {
  std::string out;
  appendWrapped(out, text, indent, 0);
  out += '\n';
  return out;
}

}  // namespace vell::cli

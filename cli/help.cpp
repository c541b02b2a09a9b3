#include "cli/help.h"

#include <algorithm>

#include "text/display_width.h"

namespace vell::cli {
namespace {

// Laying text out.

/// Takes everything up to the separator, and the separator, off the front.
std::string_view takeUntil(std::string_view& text, char separator) {
  const std::string_view front = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(front.size() + 1, text.size()));
  return front;
}

/// Appends the text with every line indented by `indent` spaces and broken at blanks before `screenWidth`.
/// Lines of the text stay lines; one that is indented itself keeps its indentation, also where it is
/// continued. The first line goes on where `out` stands, which is column `column`.
void appendWrapped(std::string& out, std::string_view text, std::size_t indent, std::size_t column) {
  for (bool first = true; !text.empty(); first = false) {
    std::string_view line = takeUntil(text, '\n');
    if (!first) {
      out += '\n';
      column = 0;
    }
    const std::size_t start = indent + std::min(line.find_first_not_of(' '), line.size());
    bool begun = false;
    while (!line.empty()) {
      const std::string_view word = takeUntil(line, ' ');
      if (word.empty()) continue;
      if (begun && column + 1 + text::displayWidth(word) > screenWidth) {
        out += '\n';
        column = 0;
        begun = false;
      }
      const std::size_t blanks = begun ? 1 : start > column ? start - column : 0;
      out.append(blanks, ' ').append(word);
      column += blanks + text::displayWidth(word);
      begun = true;
    }
  }
}

/// The text as a paragraph of its own.
std::string paragraph(std::string_view text, std::size_t indent) {
  std::string out;
  appendWrapped(out, text, indent, 0);
  return out + "\n";
}

// The parts of a screen.

constexpr std::size_t margin = 2;
/// Where explanations begin beside a name.
constexpr std::size_t explanationColumn = 28;
/// Keeps an option and its value on one line until the text is laid out.
constexpr char unbreakableBlank = '\x1f';

std::string valueName(const Option& option) {
  return option.value.empty() ? std::string() : "<" + std::string(option.value) + ">";
}

/// How an option stands in a usage line.
std::string usageForm(const Option& option) {
  std::string form(option.positional() ? "" : option.name);
  if (!option.value.empty()) {
    if (!form.empty()) form += unbreakableBlank;
    form += valueName(option);
    if (option.takes == Takes::list) form += "...";
  }
  if (!option.required) form = "[" + form + "]";
  if (option.takes == Takes::each) form += "...";
  return form;
}

/// Names beside their explanations.
class Table {
 public:
  void row(std::string_view name, std::string_view explanation) {
    std::string line(margin, ' ');
    line += name;
    std::size_t column = text::displayWidth(line);
    if (column + 2 > explanationColumn && !explanation.empty()) {
      line += '\n';
      column = 0;
    }
    appendWrapped(line, explanation, explanationColumn, column);
    text_ += line + "\n";
  }

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

void section(std::string& screen, std::string_view heading, const std::string& text) {
  if (text.empty()) return;
  if (!screen.empty()) screen += '\n';
  screen.append(heading).append("\n").append(text);
}

std::string overview(const Command& command) {
  std::string text;
  if (!command.abstract.empty()) text += paragraph(command.abstract, margin);
  if (!text.empty() && !command.discussion.empty()) text += '\n';
  if (!command.discussion.empty()) text += paragraph(command.discussion, margin);
  return text;
}

std::string optionTable(const Command& command, bool positional) {
  Table table;
  for (const Option* option : positional ? command.options : namedOptions(command)) {
    if (option->positional() == positional) table.row(optionLabel(*option), option->help);
  }
  return table.text();
}

std::string subcommandTable(const Command& command, bool isRoot) {
  Table table;
  for (const Command* next : command.subcommands) table.row(next->name, next->abstract);
  if (isRoot) table.row(helpCommand, helpOption.help);
  return table.text();
}

std::string exampleList(const Command& command) {
  std::string text;
  for (const Example& example : command.examples) {
    if (!text.empty()) text += '\n';
    text += paragraph(example.meaning, margin);
    text.append(2 * margin, ' ').append("vell ").append(example.line).append("\n");
  }
  return text;
}

}  // namespace

std::string optionLabel(const Option& option) {
  if (option.positional()) return valueName(option);
  std::string label;
  if (!option.shortName.empty()) label.append(option.shortName).append(", ");
  label += option.name;
  if (!option.value.empty()) label.append(" ").append(valueName(option));
  if (option.takes == Takes::list) label += "...";
  return label;
}

std::string usageLines(const Command& command, const std::string& path, std::string_view prefix) {
  std::string text;
  if (command.run != nullptr) {
    text.append(prefix).append(path).append(" ");
    std::string forms;
    for (const Option* option : command.options) forms += usageForm(*option) + " ";
    appendWrapped(text, forms, prefix.size() + 2 * margin, text::displayWidth(text));
    text += '\n';
  }
  if (!command.subcommands.empty()) {
    text += text.empty() ? std::string(prefix) : std::string(prefix.size(), ' ');
    text += path + " <subcommand>\n";
  }
  std::replace(text.begin(), text.end(), unbreakableBlank, ' ');
  return text;
}

std::string helpScreen(const Command& command, const std::string& path) {
  const bool isRoot = path.find(' ') == std::string::npos;
  std::string screen;
  section(screen, "OVERVIEW", overview(command));
  section(screen, "USAGE", usageLines(command, path, "  "));
  section(screen, "ARGUMENTS", optionTable(command, true));
  section(screen, "OPTIONS", optionTable(command, false));
  section(screen, "SUBCOMMANDS", subcommandTable(command, isRoot));
  if (!command.subcommands.empty()) {
    const std::string groups = isRoot ? "" : path.substr(path.find(' '));
    screen += "\n  See 'vell help" + groups + " <subcommand>' for detailed help.\n";
  }
  screen += command.appendix;
  section(screen, "EXAMPLES", exampleList(command));
  return screen;
}

std::string usageReport(const Command& command, const std::string& path, std::string_view message) {
  std::string report = "Error: " + std::string(message) + "\n";
  report += usageLines(command, path, "Usage: ");
  return report + "See '" + path + " --help' for more information.\n";
}

}  // namespace vell::cli

#include "tests/evaluation/support.h"

#include <sstream>

#include "outline_path/parse.h"

namespace vell::evaluation {
namespace {

void addRow(Outline& outline, Row& parent, const std::string& line) {
  std::istringstream words(line);
  std::string type, text, word;
  Attributes attributes;
  words >> type;
  while (words >> word) {
    if (word.front() != '@') {
      text += (text.empty() ? "" : " ") + word;
      continue;
    }
    const std::size_t equals = std::min(word.find('='), word.size());
    attributes.set(word.substr(1, equals - 1), equals == word.size() ? "" : word.substr(equals + 1));
  }
  Row& row = *outline.create(*document::rowType(type), Text(text), 0);
  outline.setAttributes(row, std::move(attributes));
  outline.insert(row, parent);
}

}  // namespace

std::unique_ptr<Outline> outlineOf(std::string_view lines) {
  auto outline = std::make_unique<Outline>();
  std::istringstream in{std::string(lines)};
  for (std::string line; std::getline(in, line);) {
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent == std::string::npos) continue;
    Row* parent = &outline->root();
    for (std::size_t level = 0; level < indent / 2; ++level)
      parent = &outline->mutableRow(*parent->lastChild());
    addRow(*outline, *parent, line.substr(indent));
  }
  return outline;
}

std::string selected(const Outline& outline, const std::string& path, const EditorView* editor,
                     const Budget& budget, const Clock& clock) {
  const auto parsed = outline_path::parse(path, {.allowValueExpression = true});
  if (parsed.error) return render(*parsed.error, path);
  try {
    std::string names;
    for (const Row* row : evaluateRows(*parsed.expression, outline, {clock, editor, budget})) {
      names += (names.empty() ? "" : " ") + (row == &outline.root() ? "ROOT" : row->text().string());
    }
    return names;
  } catch (const EvaluationError& error) {
    return std::string("error: ") + error.what();
  }
}

}  // namespace vell::evaluation

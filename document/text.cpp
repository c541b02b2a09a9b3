#include "document/text.h"

namespace vell::document {

Text::Text(const std::vector<Run>& runs) {
  for (const Run& run : runs) append(run.string, run.attrs);
}

std::vector<Run> Text::runs() const {
  std::vector<Run> runs;
  forEachRun([&](std::string_view string, const Attributes& attrs) {
    runs.push_back({std::string(string), attrs});
  });
  return runs;
}

void Text::append(std::string_view string, Attributes attrs) {
  if (string.empty()) return;
  attrs.sort();
  if (isPlain() && !attrs.empty() && !string_.empty()) spans_.push_back({string_.size(), {}});
  if (!isPlain() && spans_.back().attrs == attrs) {
    spans_.back().length += string.size();
  } else if (!isPlain() || !attrs.empty()) {
    spans_.push_back({string.size(), std::move(attrs)});
  }
  string_ += string;
}

void Text::append(const Text& other) {
  other.forEachRun([this](std::string_view string, const Attributes& attrs) { append(string, attrs); });
}

}  // namespace vell::document

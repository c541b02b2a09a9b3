#include "document/text.h"

namespace vell::document {

Text::Text(const std::vector<Run>& runs) {
  for (const Run& run : runs) append(run.string, run.attrs);
}

Text::Text(const Text& other)
    : string_(other.string_),
      spans_(other.spans_ ? std::make_unique<std::vector<Span>>(*other.spans_) : nullptr) {}

Text& Text::operator=(const Text& other) {
  if (this != &other) *this = Text(other);
  return *this;
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
  if (!spans_ && !attrs.empty()) {
    spans_ = std::make_unique<std::vector<Span>>();
    if (!string_.empty()) spans_->push_back({string_.size(), {}});
  }
  if (spans_) {
    if (!spans_->empty() && spans_->back().attrs == attrs) {
      spans_->back().length += string.size();
    } else {
      spans_->push_back({string.size(), std::move(attrs)});
    }
  }
  string_ += string;
}

void Text::append(const Text& other) {
  other.forEachRun([this](std::string_view string, const Attributes& attrs) { append(string, attrs); });
}

bool Text::operator==(const Text& other) const {
  if (string_ != other.string_ || isPlain() != other.isPlain()) return false;
  return isPlain() || *spans_ == *other.spans_;
}

}  // namespace vell::document

#include "document/attributes.h"

#include <algorithm>

namespace vell::document {

Attributes::Attributes(std::initializer_list<Attribute> entries) {
  for (const Attribute& entry : entries) set(entry.key, entry.value);
}

Attributes::Attributes(const Attributes& other)
    : entries_(other.entries_ ? std::make_unique<std::vector<Attribute>>(*other.entries_) : nullptr) {}

Attributes& Attributes::operator=(const Attributes& other) {
  if (this != &other) *this = Attributes(other);
  return *this;
}

const std::string* Attributes::find(std::string_view key) const {
  for (const Attribute& entry : *this) {
    if (entry.key == key) return &entry.value;
  }
  return nullptr;
}

void Attributes::set(std::string_view key, std::string_view value) {
  if (!entries_) {
    entries_ = std::make_unique<std::vector<Attribute>>();
    entries_->reserve(1);
  }
  const auto has = [key](const Attribute& entry) { return entry.key == key; };
  const auto found = std::find_if(entries_->begin(), entries_->end(), has);
  if (found == entries_->end()) {
    entries_->push_back({std::string(key), std::string(value)});
  } else {
    found->value = value;
  }
}

bool Attributes::remove(std::string_view key) {
  if (!entries_) return false;
  const bool removed =
      std::erase_if(*entries_, [key](const Attribute& entry) { return entry.key == key; }) > 0;
  if (entries_->empty()) entries_.reset();
  return removed;
}

void Attributes::sort() {
  if (!entries_) return;
  std::sort(entries_->begin(), entries_->end(),
            [](const Attribute& left, const Attribute& right) { return left.key < right.key; });
}

bool Attributes::operator==(const Attributes& other) const {
  return std::equal(begin(), end(), other.begin(), other.end());
}

}  // namespace vell::document

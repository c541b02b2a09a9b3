#include "document/attributes.h"

#include <algorithm>

namespace vell::document {

Attributes::Attributes(std::initializer_list<Attribute> entries) {
  for (const Attribute& entry : entries) set(entry.key, entry.value);
}

const std::string* Attributes::find(std::string_view key) const {
  for (const Attribute& entry : *this) {
    if (entry.key == key) return &entry.value;
  }
  return nullptr;
}

void Attributes::set(std::string_view key, std::string_view value) {
  const auto has = [key](const Attribute& entry) { return entry.key == key; };
  const auto found = std::find_if(entries_.begin(), entries_.end(), has);
  if (found == entries_.end()) {
    entries_.push_back({std::string(key), std::string(value)});
  } else {
    found->value = value;
  }
}

void Attributes::setFirst(std::string_view key, std::string_view value) {
  if (find(key) == nullptr) entries_.insert(entries_.begin(), {std::string(key), std::string()});
  set(key, value);
}

bool Attributes::remove(std::string_view key) {
  return std::erase_if(entries_, [key](const Attribute& entry) { return entry.key == key; }) > 0;
}

void Attributes::sort() {
  std::sort(entries_.begin(), entries_.end(),
            [](const Attribute& left, const Attribute& right) { return left.key < right.key; });
}

}  // namespace vell::document

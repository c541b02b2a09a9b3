#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vell::document {

struct Attribute {
  std::string key;
  std::string value;

  bool operator==(const Attribute&) const = default;
};

/// String keys with string values in a kept order.
class Attributes {
 public:
  Attributes() = default;
  Attributes(std::initializer_list<Attribute> entries);

  bool empty() const { return entries_.empty(); }
  std::size_t size() const { return entries_.size(); }
  const Attribute* begin() const { return entries_.data(); }
  const Attribute* end() const { return begin() + size(); }

  /// The value of the key, null where it is not set. Valid until the next change.
  const std::string* find(std::string_view key) const;
  /// Sets in place; a new key goes to the end.
  void set(std::string_view key, std::string_view value);
  /// Sets in place; a new key goes to the front.
  void setFirst(std::string_view key, std::string_view value);
  /// True if the key was there.
  bool remove(std::string_view key);
  /// Orders by key, bytewise.
  void sort();

  /// The same entries in the same order.
  bool operator==(const Attributes& other) const = default;

 private:
  std::vector<Attribute> entries_;
};

}  // namespace vell::document

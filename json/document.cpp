#include "json/document.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "json/escapes.h"

namespace vell::json {
namespace {

std::string decoded(const Index& index, std::uint32_t entry) {
  const std::string_view raw = index.rawString(entry);
  return index.hasEscapes(entry) ? unescaped(raw, LoneSurrogate::replaced) : std::string(raw);
}

bool keyIs(const Index& index, std::uint32_t entry, std::string_view key) {
  return index.hasEscapes(entry) ? decoded(index, entry) == key : index.rawString(entry) == key;
}

}  // namespace

Kind Node::kind() const {
  switch (index_->firstByte(entry_)) {
    case '{':
      return Kind::object;
    case '[':
      return Kind::array;
    case '"':
      return Kind::string;
    case 't':
    case 'f':
      return Kind::boolean;
    case 'n':
      return Kind::null;
    default:
      return Kind::number;
  }
}

std::optional<Node> Node::find(std::string_view key) const {
  std::optional<Node> found;
  if (kind() != Kind::object) return found;
  for (std::uint32_t name = entry_ + 1; name < index_->containerEnd(entry_); name = index_->next(name + 1)) {
    if (keyIs(*index_, name, key)) found = Node(*index_, name + 1);
  }
  return found;
}

std::vector<Member> Node::members() const {
  std::vector<Member> members;
  if (kind() != Kind::object) return members;
  for (std::uint32_t key = entry_ + 1; key < index_->containerEnd(entry_); key = index_->next(key + 1)) {
    members.push_back({decoded(*index_, key), Node(*index_, key + 1), index_->begin(key)});
  }
  return members;
}

std::vector<Node> Node::elements() const {
  std::vector<Node> nodes;
  if (kind() != Kind::array) return nodes;
  for (std::uint32_t element = entry_ + 1; element < index_->containerEnd(entry_);
       element = index_->next(element)) {
    nodes.push_back(Node(*index_, element));
  }
  return nodes;
}

std::optional<std::string> Node::string() const {
  if (kind() != Kind::string) return std::nullopt;
  return decoded(*index_, entry_);
}

std::optional<bool> Node::boolean() const {
  if (kind() != Kind::boolean) return std::nullopt;
  return index_->firstByte(entry_) == 't';
}

std::optional<std::int64_t> Node::integer() const {
  if (kind() != Kind::number) return std::nullopt;
  const std::string_view text = index_->scalar(entry_);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<double> Node::number() const {
  if (kind() != Kind::number) return std::nullopt;
  const double number = std::strtod(std::string(index_->scalar(entry_)).c_str(), nullptr);
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace vell::json

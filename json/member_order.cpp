#include "json/member_order.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>

#include "json/strings.h"

namespace vell::json {
namespace {

/// A key's first eight bytes as one big-endian number, the missing ones zero: most comparisons need no more.
/// Eight bytes must be readable.
std::uint64_t prefixOf(std::string_view key) {
  unsigned char bytes[8];
  std::memcpy(bytes, key.data(), sizeof bytes);
  std::uint64_t prefix = 0;
  for (const unsigned char byte : bytes) prefix = prefix << 8 | byte;
  static constexpr std::uint64_t used[] = {0,           ~0ULL << 56, ~0ULL << 48, ~0ULL << 40, ~0ULL << 32,
                                           ~0ULL << 24, ~0ULL << 16, ~0ULL << 8,  ~0ULL};
  return prefix & used[std::min(key.size(), sizeof bytes)];
}

/// Sorts members of any number whose keys may hold escapes.
class Sorter {
 public:
  Sorter(const Index& index, std::uint32_t object) : index_(index) {
    for (std::uint32_t key = object + 1; key < index.containerEnd(object); key = index.next(key + 1)) {
      members_.push_back({meaningOf(key), key});
    }
    std::stable_sort(members_.begin(), members_.end(),
                     [](const Member& a, const Member& b) { return a.key < b.key; });
  }

  // Members with the same key stand together, in the order of the text.
  void append(std::vector<std::uint32_t>& keys) const {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (i + 1 < members_.size() && members_[i].key == members_[i + 1].key) continue;
      keys.push_back(members_[i].entry);
    }
  }

 private:
  struct Member {
    std::string_view key;
    std::uint32_t entry;
  };

  std::string_view meaningOf(std::uint32_t key) {
    const std::string_view raw = index_.rawString(key);
    if (!index_.hasEscapes(key)) return raw;
    appendDecoded(raw, LoneSurrogate::kept, decoded_.emplace_back());
    return decoded_.back();
  }

  const Index& index_;
  std::vector<Member> members_;
  std::deque<std::string> decoded_;  // what keys with escapes mean
};

}  // namespace

void MemberOrder::append(std::uint32_t object, std::vector<std::uint32_t>& keys) {
  const bool areFew = gather(object);
  if (areFew && appendAsKnown(keys)) return;
  const std::size_t first = keys.size();
  Sorter(index_, object).append(keys);
  if (areFew && keys.size() - first == count_) remember(keys.data() + first);
}

/// Whether the members are few and their keys plain.
bool MemberOrder::gather(std::uint32_t object) {
  count_ = 0;
  hash_ = 0;
  const std::uint32_t end = index_.containerEnd(object);
  for (std::uint32_t key = object + 1; key < end; key = index_.next(key + 1)) {
    if (count_ == mostKnown || index_.hasEscapes(key)) return false;
    const std::uint64_t prefix = prefixOf(index_.rawString(key));
    hash_ = (hash_ ^ prefix ^ prefix >> 32) * 0x9E3779B97F4A7C15;
    prefixes_[count_] = prefix;
    tokens_[count_++] = key;
  }
  hash_ ^= hash_ >> 32;
  return true;
}

// Objects of one kind repeat, so the order found for the last of them is tried; that it holds is checked.
bool MemberOrder::appendAsKnown(std::vector<std::uint32_t>& keys) const {
  const Order& known = known_[hash_ % known_.size()];
  if (known.hash != hash_ || known.count != count_) return false;
  for (std::size_t i = 1; i < count_; ++i) {
    if (!before(known.places[i - 1], known.places[i])) return false;
  }
  for (std::size_t i = 0; i < count_; ++i) keys.push_back(tokens_[known.places[i]]);
  return true;
}

// A shorter key's prefix is filled with NULs, so equal prefixes still need the whole comparison.
bool MemberOrder::before(std::size_t a, std::size_t b) const {
  if (prefixes_[a] != prefixes_[b]) return prefixes_[a] < prefixes_[b];
  return index_.rawString(tokens_[a]) < index_.rawString(tokens_[b]);
}

void MemberOrder::remember(const std::uint32_t* sorted) {
  Order& known = known_[hash_ % known_.size()];
  known.hash = hash_;
  known.count = static_cast<std::uint8_t>(count_);
  for (std::size_t i = 0; i < count_; ++i) {
    const auto place = std::find(tokens_.begin(), tokens_.begin() + count_, sorted[i]) - tokens_.begin();
    known.places[i] = static_cast<std::uint8_t>(place);
  }
}

}  // namespace vell::json

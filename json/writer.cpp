#include "json/writer.h"

#include <algorithm>
#include <cstring>
#include <deque>

#include "json/buffer.h"
#include "json/strings.h"

namespace vell::json {
namespace {

/// One member of an object, ready to be put in order.
struct Member {
  std::uint64_t prefix;  // the key's first eight bytes, so that most comparisons touch nothing else
  std::string_view key;  // its meaning
  std::uint32_t token;
};

/// The first eight bytes as one big-endian number, the missing ones zero. Eight bytes must be readable.
std::uint64_t prefixOf(std::string_view key) {
  unsigned char bytes[8];
  std::memcpy(bytes, key.data(), sizeof bytes);
  std::uint64_t prefix = 0;
  for (const unsigned char byte : bytes) prefix = prefix << 8 | byte;
  if (key.size() >= sizeof bytes) return prefix;
  const std::size_t missing = 8 * (sizeof bytes - key.size());
  return key.empty() ? 0 : prefix >> missing << missing;
}

// A shorter key's prefix is filled with NULs, so equal prefixes still need the whole comparison.
bool before(const Member& a, const Member& b) {
  if (a.prefix != b.prefix) return a.prefix < b.prefix;
  const int order = a.key.compare(b.key);
  return order != 0 ? order < 0 : a.token < b.token;
}

/// Most objects are small and nearly in order already.
void sort(Member* begin, Member* end) {
  if (end - begin > 24) return std::sort(begin, end, before);
  for (Member* next = begin + 1; next < end; ++next) {
    const Member moving = *next;
    Member* place = next;
    for (; place > begin && before(moving, place[-1]); --place) *place = place[-1];
    *place = moving;
  }
}

}  // namespace

/// Walks the tokens with a stack of its own: depth costs memory, never the call stack.
class Writer {
 public:
  Writer(const Node& value, Layout layout, Sink& sink)
      : index_(*value.index_), indented_(layout == Layout::indented), out_(sink) {
    begin(value.token_);
  }

  static void meaning(const Node& string, Sink& sink) {
    const std::string_view raw = string.index_->rawString(string.token_);
    if (!string.index_->hasEscapes(string.token_)) return sink.write(raw);
    Buffer out(sink);
    writeDecoded(raw, out);
    out.flush();
  }

  void run() {
    while (!open_.empty()) step();
    out_.flush();
  }

 private:
  struct Container {
    bool isObject;
    bool isEmpty;
    std::size_t next;  // of an object, the member in members_; of an array, the token
    std::size_t end;
    std::size_t firstMember;
  };

  void step() {
    Container& container = open_.back();
    if (container.next >= container.end) return close();
    if (!container.isEmpty) out_.put(',');
    container.isEmpty = false;
    newLine(open_.size());
    container.isObject ? member(container) : element(container);
  }

  void element(Container& array) {
    const auto token = static_cast<std::uint32_t>(array.next);
    array.next = index_.next(token);
    begin(token);
  }

  void member(Container& object) {
    const std::uint32_t token = members_[object.next].token;
    ++object.next;
    string(token);
    out_.put(indented_ ? std::string_view(": ") : std::string_view(":"));
    begin(token + 1);
  }

  void begin(std::uint32_t token) {
    switch (index_.first(token)) {
      case '{':
        out_.put('{');
        return beginObject(token);
      case '[':
        out_.put('[');
        open_.push_back({false, true, token + 2, index_.end(token), members_.size()});
        return;
      case '"':
        return string(token);
      default:
        return out_.putPadded(index_.scalar(token));
    }
  }

  void beginObject(std::uint32_t token) {
    const std::size_t first = members_.size();
    bool sorted = true;
    for (std::uint32_t key = token + 2; key < index_.end(token); key = index_.next(key + 1)) {
      const std::string_view meaning = meaningOf(key);
      members_.push_back({prefixOf(meaning), meaning, key});
      sorted =
          sorted && (members_.size() == first + 1 || before(members_[members_.size() - 2], members_.back()));
    }
    if (!sorted) sort(members_.data() + first, members_.data() + members_.size());
    dropRepeated(first);
    open_.push_back({true, true, first, members_.size(), first});
  }

  /// Of members with the same key, which stand together in the order of the text, only the last stays.
  void dropRepeated(std::size_t first) {
    const auto begin = members_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto same = [](const Member& a, const Member& b) { return a.prefix == b.prefix && a.key == b.key; };
    if (std::adjacent_find(begin, members_.end(), same) == members_.end()) return;
    std::vector<Member> kept;
    for (auto member = begin; member != members_.end(); ++member) {
      if (!kept.empty() && same(kept.back(), *member)) kept.pop_back();
      kept.push_back(*member);
    }
    members_.erase(begin, members_.end());
    members_.insert(members_.end(), kept.begin(), kept.end());
  }

  void close() {
    const Container done = open_.back();
    open_.pop_back();
    if (!done.isEmpty) newLine(open_.size());
    out_.put(done.isObject ? '}' : ']');
    members_.resize(done.firstMember);
    if (open_.empty()) decodedKeys_.clear();
  }

  void newLine(std::size_t depth) {
    if (!indented_) return;
    static constexpr std::string_view blanks =
        "\n                                                               ";
    static_assert(blanks.size() == Buffer::paddedRead);
    if (depth * 2 < blanks.size()) return out_.putPadded(blanks.substr(0, depth * 2 + 1));
    out_.put(blanks);
    for (std::size_t left = depth * 2 + 1 - blanks.size(); left > 0;) {
      const std::size_t now = std::min(left, blanks.size() - 1);
      out_.put(blanks.substr(1, now));
      left -= now;
    }
  }

  void string(std::uint32_t token) {
    const std::string_view raw = index_.rawString(token);
    if (!index_.hasEscapes(token)) return out_.putPadded({raw.data() - 1, raw.size() + 2});
    scratch_.assign(1, '"');
    appendNormalized(raw, scratch_);
    scratch_.push_back('"');
    out_.put(scratch_);
  }

  std::string_view meaningOf(std::uint32_t key) {
    const std::string_view raw = index_.rawString(key);
    if (!index_.hasEscapes(key)) return raw;
    appendDecoded(raw, LoneSurrogate::kept, decodedKeys_.emplace_back());
    // A key read from the text has readable bytes behind it; so must this one.
    const std::size_t size = decodedKeys_.back().size();
    decodedKeys_.back().append(sizeof(Member::prefix), '\0');
    return std::string_view(decodedKeys_.back()).substr(0, size);
  }

  const Index& index_;
  const bool indented_;
  Buffer out_;
  std::vector<Container> open_;
  std::vector<Member> members_;          // of all open objects, the innermost last
  std::deque<std::string> decodedKeys_;  // what keys with escapes mean
  std::string scratch_;
};

namespace {

class StringSink : public Sink {
 public:
  void write(std::string_view piece) override { text.append(piece); }
  std::string text;
};

}  // namespace

void write(const Node& value, Layout layout, Sink& sink) { Writer(value, layout, sink).run(); }

void writeMeaning(const Node& value, Sink& sink) { Writer::meaning(value, sink); }

std::string toString(const Node& value, Layout layout) {
  StringSink sink;
  write(value, layout, sink);
  return std::move(sink.text);
}

void appendQuoted(const Node& value, std::string& out) {
  const std::string text = toString(value, Layout::compact);
  out.reserve(out.size() + text.size() + text.size() / 4 + 3);
  out += '"';
  const std::size_t first = out.size();
  out.resize(first + 2 * text.size());
  char* at = out.data() + first;
  for (const char byte : text) {
    *at = '\\';
    at += byte == '"' || byte == '\\';
    *at++ = byte;
  }
  out.resize(static_cast<std::size_t>(at - out.data()));
  out += '"';
}

std::string rewrite(std::string_view text, Layout layout) {
  const Document document{Text(text)};
  return toString(document.root(), layout);
}

}  // namespace vell::json

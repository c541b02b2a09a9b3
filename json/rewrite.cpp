#include "json/rewrite.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

#include "json/strings.h"

namespace vell::json {
namespace {

/// Puts the members of objects in the byte order of their keys.
class KeySorter {
 public:
  explicit KeySorter(const Index& index) : index_(index) {}

  /// Appends the keys of an object's members in their order; of repeated keys only the last.
  void append(std::uint32_t object, std::vector<std::uint32_t>& sorted) {
    keys_.clear();
    decoded_.clear();
    for (std::uint32_t key = object + 1; key < index_.containerEnd(object); key = index_.next(key + 1)) {
      keys_.push_back({textOf(key), key});
    }
    std::sort(keys_.begin(), keys_.end());
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      const bool comesAgain = i + 1 < keys_.size() && keys_[i].first == keys_[i + 1].first;
      if (!comesAgain) sorted.push_back(keys_[i].second);
    }
  }

 private:
  std::string_view textOf(std::uint32_t key) {
    const std::string_view raw = index_.rawString(key);
    if (!index_.hasEscapes(key)) return raw;
    appendDecoded(raw, LoneSurrogate::kept, decoded_.emplace_back());
    return decoded_.back();
  }

  const Index& index_;
  std::vector<std::pair<std::string_view, std::uint32_t>> keys_;  // of the object at hand: text, entry
  std::deque<std::string> decoded_;                               // the texts of keys with escapes
};

}  // namespace

/// Escaped: the text is the inside of a string.
enum class Quotes { plain, escaped };

/// Walks the entries with a stack of its own: depth costs memory, never the call stack. The place to write to
/// travels through the functions, since in memory it would be stored and loaded for each piece.
class Reprinter {
 public:
  Reprinter(const Node& value, Layout layout, Quotes quotes, Sink& sink)
      : index_(*value.index_),
        sorter_(index_),
        indented_(layout == Layout::indented),
        escaped_(quotes == Quotes::escaped),
        out_(sink) {
    begin(out_.at(), value.entry_);
  }

  static void meaning(const Node& string, Sink& sink) {
    const std::string_view raw = string.index_->rawString(string.entry_);
    string.index_->hasEscapes(string.entry_) ? writeDecoded(raw, sink) : sink.write(raw);
  }

  void run() {
    while (!open_.empty()) open_.back().isObject ? members(out_.at()) : elements(out_.at());
  }

 private:
  struct Container {
    bool isObject;
    std::size_t first;  // of an object, places in keys_; of an array, entries
    std::size_t next;
    std::size_t end;
  };

  /// Writes members up to one whose value opens a container, or the end of the object.
  void members(char* at) {
    Container& object = open_.back();
    while (object.next != object.end) {
      at = lead(at, object);
      const std::uint32_t key = keys_[object.next++];
      at = colon(string(at, key));
      if (index_.isContainer(key + 1)) return begin(at, key + 1);
      at = plain(at, key + 1);
    }
    keys_.resize(object.first);
    close(at, object, '}');
  }

  void elements(char* at) {
    Container& array = open_.back();
    while (array.next != array.end) {
      at = lead(at, array);
      const auto entry = static_cast<std::uint32_t>(array.next);
      array.next = index_.next(entry);
      if (index_.isContainer(entry)) return begin(at, entry);
      at = plain(at, entry);
    }
    close(at, array, ']');
  }

  void begin(char* at, std::uint32_t entry) {
    if (!index_.isContainer(entry)) {
      plain(at, entry);
    } else if (index_.firstByte(entry) == '{') {
      put(at, '{');
      const std::size_t first = keys_.size();
      sorter_.append(entry, keys_);
      open_.push_back({true, first, first, keys_.size()});
    } else {
      put(at, '[');
      open_.push_back({false, entry + 1, entry + 1, index_.containerEnd(entry)});
    }
  }

  void close(char* at, const Container& container, char bracket) {
    const bool isEmpty = container.first == container.end;
    open_.pop_back();
    if (indented_ && !isEmpty) at = newLine(at, false);
    put(at, bracket);
  }

  /// What stands before a member or an element.
  char* lead(char* at, const Container& container) {
    const bool comma = container.next != container.first;
    if (indented_) return newLine(at, comma);
    return comma ? put(at, ',') : at;
  }

  char* newLine(char* at, bool comma) {
    static constexpr std::string_view blanks =
        ",\n                                                               ";
    static_assert(blanks.size() == Sink::padding + 1);
    const std::size_t size = 2 * open_.size() + 1;
    if (size > Sink::padding - 1) return deepLine(at, comma);
    std::memcpy(at, blanks.data() + (comma ? 0 : 1), Sink::padding);
    return out_.moveTo(at + size + (comma ? 1 : 0));
  }

  char* deepLine(char* at, bool comma) {
    static constexpr std::string_view blanks = "                                ";
    if (comma) at = put(at, ',');
    at = put(at, '\n');
    for (std::size_t left = 2 * open_.size(); left > 0;) {
      const std::size_t now = std::min(left, blanks.size());
      at = out_.moveTo(std::copy_n(blanks.data(), now, at));
      left -= now;
    }
    return at;
  }

  char* colon(char* at) {
    std::memcpy(at, ": ", 2);
    return out_.moveTo(at + (indented_ ? 2 : 1));
  }

  /// Writes a value that is no container.
  char* plain(char* at, std::uint32_t entry) {
    return index_.firstByte(entry) == '"' ? string(at, entry) : copy(at, index_.scalar(entry));
  }

  char* string(char* at, std::uint32_t entry) {
    if (escaped_) return escapedString(at, entry);
    if (!index_.hasEscapes(entry)) return copy(at, index_.quotedString(entry));
    scratch_.assign(1, '"');
    appendNormalized(index_.rawString(entry), scratch_);
    scratch_.push_back('"');
    out_.write(scratch_);
    return out_.at();
  }

  char* escapedString(char* at, std::uint32_t entry) {
    at = escapedQuote(at);
    if (!index_.hasEscapes(entry)) return escapedQuote(copy(at, index_.rawString(entry)));
    scratch_.clear();
    appendNormalized(index_.rawString(entry), scratch_);
    for (const char byte : scratch_) {
      if (byte == '"' || byte == '\\') at = put(at, '\\');
      at = put(at, byte);
    }
    return escapedQuote(at);
  }

  char* escapedQuote(char* at) {
    std::memcpy(at, "\\\"", 2);
    return out_.moveTo(at + 2);
  }

  /// Behind every piece of the text lie as many readable bytes as a copy of fixed length needs.
  char* copy(char* at, std::string_view piece) {
    for (; piece.size() > Sink::padding; piece.remove_prefix(Sink::padding)) {
      std::memcpy(at, piece.data(), Sink::padding);
      at = out_.moveTo(at + Sink::padding);
    }
    std::memcpy(at, piece.data(), Sink::padding);
    return out_.moveTo(at + piece.size());
  }

  char* put(char* at, char c) {
    *at = c;
    return out_.moveTo(at + 1);
  }

  const Index& index_;
  KeySorter sorter_;
  const bool indented_;
  const bool escaped_;
  Sink& out_;
  std::vector<Container> open_;
  std::vector<std::uint32_t> keys_;  // of the members of all open objects, the innermost last
  std::string scratch_;
};

namespace {

class StringSink : public Sink {
 public:
  explicit StringSink(std::string& text) : Sink({room_, roomSize}), text_(text) {}
  void finish() { passAll(); }

 private:
  static constexpr std::size_t roomSize = 64 * 1024;

  Room pass(std::string_view content) override {
    text_.append(content);
    return {room_, roomSize};
  }

  std::string& text_;
  char room_[roomSize + padding];
};

}  // namespace

void write(const Node& value, Layout layout, Sink& sink) {
  Reprinter(value, layout, Quotes::plain, sink).run();
}

void writeMeaning(const Node& value, Sink& sink) { Reprinter::meaning(value, sink); }

std::string toString(const Node& value, Layout layout) {
  std::string text;
  StringSink sink(text);
  write(value, layout, sink);
  sink.finish();
  return text;
}

void appendQuoted(const Node& value, std::string& out) {
  out += '"';
  StringSink sink(out);
  Reprinter(value, Layout::compact, Quotes::escaped, sink).run();
  sink.finish();
  out += '"';
}

std::string rewrite(std::string_view text, Layout layout) {
  const Document document{Text(text)};
  return toString(document.root(), layout);
}

}  // namespace vell::json

#include "json/rewrite.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

#include "json/escapes.h"

namespace vell::json {
namespace {

/// Puts the members of objects in the byte order of their keys.
class KeySorter {
 public:
  explicit KeySorter(const Index& index) : index_(index) {}

  /// Appends the keys of an object's members in their order; of repeated keys only the last.
  void append(std::uint32_t object, std::vector<std::uint32_t>& sorted) {
    keys_.clear();
    unescaped_.clear();
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
    return index_.hasEscapes(key) ? unescaped_.emplace_back(unescaped(raw, LoneSurrogate::kept)) : raw;
  }

  const Index& index_;
  std::vector<std::pair<std::string_view, std::uint32_t>> keys_;  // of the object at hand: text, entry
  std::deque<std::string> unescaped_;                             // the texts of keys with escapes
};

}  // namespace

/// Prints a value again. The stack of open containers is its own: depth costs memory, never call frames.
class Reprinter {
 public:
  Reprinter(const Node& value, Layout layout, Sink& out)
      : index_(*value.index_), sorter_(index_), indented_(layout == Layout::indented), out_(out) {
    put(value.entry_);
    while (!open_.empty()) open_.back().isObject ? members(open_.back()) : elements(open_.back());
  }

 private:
  struct Container {
    bool isObject;
    std::size_t first;  // of an object, places in keys_; of an array, entries
    std::size_t next;
    std::size_t end;
  };

  /// Writes members up to one whose value is a container, or the end of the object.
  void members(Container& object) {
    while (object.next != object.end) {
      separate(object);
      const std::uint32_t key = keys_[object.next++];
      string(key);
      out_.write(indented_ ? ": " : ":");
      if (put(key + 1)) return;
    }
    keys_.resize(object.first);
    end(object, '}');
  }

  void elements(Container& array) {
    while (array.next != array.end) {
      separate(array);
      const auto element = static_cast<std::uint32_t>(array.next);
      array.next = index_.next(element);
      if (put(element)) return;
    }
    end(array, ']');
  }

  /// Writes a scalar, or opens a container: then true.
  bool put(std::uint32_t entry) {
    if (!index_.isContainer(entry)) {
      index_.firstByte(entry) == '"' ? string(entry) : out_.write(index_.scalar(entry));
      return false;
    }
    const bool isObject = index_.firstByte(entry) == '{';
    out_.put(isObject ? '{' : '[');
    if (isObject) {
      const std::size_t first = keys_.size();
      sorter_.append(entry, keys_);
      open_.push_back({true, first, first, keys_.size()});
    } else {
      open_.push_back({false, entry + 1, entry + 1, index_.containerEnd(entry)});
    }
    return true;
  }

  void end(const Container& container, char bracket) {
    const bool isEmpty = container.first == container.end;
    open_.pop_back();
    if (!isEmpty) newLine();
    out_.put(bracket);
  }

  /// What stands before a member or an element.
  void separate(const Container& container) {
    if (container.next != container.first) out_.put(',');
    newLine();
  }

  void newLine() {
    if (!indented_) return;
    static constexpr std::string_view blanks = "                                ";
    out_.put('\n');
    for (std::size_t left = 2 * open_.size(); left > 0;) {
      const std::string_view some = blanks.substr(0, left);
      out_.write(some);
      left -= some.size();
    }
  }

  void string(std::uint32_t entry) {
    if (!index_.hasEscapes(entry)) return out_.write(index_.quotedString(entry));
    scratch_.assign(1, '"');
    appendReescaped(index_.rawString(entry), scratch_);
    scratch_.push_back('"');
    out_.write(scratch_);
  }

  const Index& index_;
  KeySorter sorter_;
  const bool indented_;
  Sink& out_;
  std::vector<Container> open_;
  std::vector<std::uint32_t> keys_;  // of the members of all open objects, the innermost last
  std::string scratch_;
};

namespace {

class StringSink : public Sink {
 public:
  explicit StringSink(std::string& text) : Sink(1 << 15), text_(text) {}
  void finish() { passAll(); }

 private:
  void pass(std::string_view part) override { text_.append(part); }

  std::string& text_;
};

}  // namespace

void write(const Node& value, Layout layout, Sink& sink) { Reprinter(value, layout, sink); }

std::string toString(const Node& value, Layout layout) {
  std::string text;
  StringSink sink(text);
  write(value, layout, sink);
  sink.finish();
  return text;
}

std::string rewrite(std::string_view text, Layout layout) {
  const Document document{text};
  return toString(document.root(), layout);
}

}  // namespace vell::json

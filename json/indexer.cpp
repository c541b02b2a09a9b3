#include "json/indexer.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "json/error.h"
#include "json/faults.h"
#include "json/index.h"
#include "json/scalars.h"
#include "json/strings.h"

namespace vell::json {
namespace {

class Indexer {
 public:
  Indexer(std::string_view text, std::uint32_t* entries, std::size_t count)
      : text_(text),
        entries_(entries),
        read_(indexRoom(text.size())),
        readEnd_(read_ + count),
        nextBackslash_(findBackslash(0)) {}

  void run() {
    value("a value");
    while (!open_.empty()) open_.back().isObject ? members() : elements();
    if (read_ < readEnd_) fail("the end of the text");
  }

 private:
  struct Container {
    std::size_t endEntry;
    bool isObject;
    bool isEmpty;
  };

  std::size_t offset() const { return read_ < readEnd_ ? entries_[read_] : text_.size(); }
  char peek() const { return read_ < readEnd_ ? text_[entries_[read_]] : '\0'; }

  bool isNext(char c) const { return peek() == c && read_ < readEnd_; }

  [[noreturn]] void fail(const char* expected) const {
    throw ParseError(std::string("expected ") + expected + ", found " + describeAt(text_, offset()),
                     offset());
  }

  void put(std::size_t first, std::size_t second) {
    entries_[written_] = static_cast<std::uint32_t>(first);
    entries_[written_ + 1] = static_cast<std::uint32_t>(second);
    written_ += 2;
  }

  /// On from the innermost object's beginning, or from a value in it, to the next beginning or end.
  void members() {
    bool first = open_.back().isEmpty;
    open_.back().isEmpty = false;
    if (first && isNext('}')) return end();
    do {
      if (!first) {
        if (isNext('}')) return end();
        if (!isNext(',')) fail("',' or '}'");
        ++read_;
      }
      if (!isNext('"')) fail(first ? "a key in double quotes or '}'" : "a key in double quotes");
      string();
      if (!isNext(':')) fail("':'");
      ++read_;
      first = false;
    } while (!value("a value"));
  }

  /// The same in an array.
  void elements() {
    bool first = open_.back().isEmpty;
    open_.back().isEmpty = false;
    if (first && isNext(']')) return end();
    do {
      if (!first) {
        if (isNext(']')) return end();
        if (!isNext(',')) fail("',' or ']'");
        ++read_;
      }
    } while (!value(std::exchange(first, false) ? "a value or ']'" : "a value"));
  }

  void end() {
    ++read_;
    entries_[open_.back().endEntry] = static_cast<std::uint32_t>(written_ / 2) | Index::mark;
    open_.pop_back();
  }

  /// Whether it was the beginning of a container.
  bool value(const char* expected) {
    switch (peek()) {
      case '{':
      case '[':
        begin();
        return true;
      case '"':
        string();
        return false;
      default:
        scalar(expected);
        return false;
    }
  }

  void begin() {
    if (open_.size() == maxDepth)
      throw ParseError("nested deeper than " + std::to_string(maxDepth) + " levels", offset());
    const bool isObject = peek() == '{';
    open_.push_back({written_ + 1, isObject, true});
    put(entries_[read_++], 0);
  }

  void string() {
    const std::size_t open = entries_[read_++];
    std::size_t close = offset() - 1;
    while (text_[close] != '"') --close;
    const bool escaped = hasBackslash(open, close);
    if (escaped) checkEscapes(text_, open + 1, close);
    put(escaped ? open | Index::mark : open, close);
  }

  void scalar(const char* expected) {
    const std::size_t at = offset();
    const std::string_view run = read_ < readEnd_ ? scalarAt(text_, at, text_.size()) : std::string_view();
    if (!isScalar(run)) failScalar(expected, run);
    ++read_;
    put(at, at + run.size());
  }

  [[noreturn]] void failScalar(const char* expected, std::string_view run) const {
    if (run.empty()) fail(expected);
    const std::string shown(run.substr(0, 40));
    const char* kind = run[0] == '-' || (run[0] >= '0' && run[0] <= '9') ? "' is not a JSON number"
                                                                         : "' is not a JSON value";
    throw ParseError("'" + shown + kind, offset());
  }

  // Strings are visited in the order of the text, so one moving mark tells for all of them.
  bool hasBackslash(std::size_t from, std::size_t to) {
    if (nextBackslash_ < from) nextBackslash_ = findBackslash(from);
    return nextBackslash_ < to;
  }
  std::size_t findBackslash(std::size_t from) const {
    const void* found = std::memchr(text_.data() + from, '\\', text_.size() - from);
    return found == nullptr ? text_.size()
                            : static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
  }

  std::string_view text_;
  std::uint32_t* entries_;
  std::size_t read_;
  std::size_t readEnd_;
  std::size_t written_ = 0;
  std::size_t nextBackslash_;
  std::vector<Container> open_;
};

}  // namespace

void indexTokens(std::string_view text, std::uint32_t* entries, std::size_t count) {
  Indexer(text, entries, count).run();
}

}  // namespace vell::json

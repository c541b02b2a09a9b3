#include "json/indexer.h"

#include <cstring>
#include <string>
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
  Indexer(std::string_view text, std::uint32_t* offsets, std::size_t first, std::size_t count)
      : text_(text),
        offsets_(offsets),
        read_(first),
        readEnd_(first + count),
        nextBackslash_(findBackslash(0)) {}

  TokenRange run() {
    value("a value");
    while (!open_.empty()) member();
    if (read_ < readEnd_) fail("the end of the text");
    return {0, static_cast<std::uint32_t>(written_)};
  }

 private:
  struct Container {
    std::size_t token;
    bool isObject;
    bool isEmpty;
  };

  std::size_t offset() const { return read_ < readEnd_ ? offsets_[read_] : text_.size(); }
  char peek() const { return read_ < readEnd_ ? text_[offsets_[read_]] : '\0'; }

  [[noreturn]] void fail(const char* expected) const {
    throw ParseError(std::string("expected ") + expected + ", found " + describeAt(text_, offset()),
                     offset());
  }

  void put(std::size_t entry) { offsets_[written_++] = static_cast<std::uint32_t>(entry); }

  /// One step inside the innermost container: its end, or a comma, a key and a value.
  void member() {
    Container& container = open_.back();
    const char close = container.isObject ? '}' : ']';
    if (peek() == close && read_ < readEnd_) return end();
    if (!container.isEmpty) {
      if (peek() != ',') fail(container.isObject ? "',' or '}'" : "',' or ']'");
      ++read_;
    }
    const bool wasEmpty = container.isEmpty;
    container.isEmpty = false;
    if (container.isObject) {
      key(wasEmpty);
    }
    value(wasEmpty && !open_.back().isObject ? "a value or ']'" : "a value");
  }

  void end() {
    ++read_;
    offsets_[open_.back().token + 1] = static_cast<std::uint32_t>(written_);
    open_.pop_back();
  }

  void key(bool first) {
    if (peek() != '"') fail(first ? "a key in double quotes or '}'" : "a key in double quotes");
    string();
    if (peek() != ':') fail("':'");
    ++read_;
  }

  void value(const char* expected) {
    switch (peek()) {
      case '{':
      case '[':
        return begin();
      case '"':
        return string();
      default:
        return scalar(expected);
    }
  }

  void begin() {
    if (open_.size() == maxDepth)
      throw ParseError("nested deeper than " + std::to_string(maxDepth) + " levels", offset());
    const bool isObject = peek() == '{';
    open_.push_back({written_, isObject, true});
    const std::size_t at = offsets_[read_++];
    put(at);
    put(0);
  }

  void string() {
    const std::size_t open = offsets_[read_++];
    std::size_t close = offset() - 1;
    while (text_[close] != '"') --close;
    const bool escaped = hasBackslash(open, close);
    if (escaped) checkEscapes(text_, open + 1, close);
    put(escaped ? open | Index::escapeMark : open);
  }

  void scalar(const char* expected) {
    const std::size_t at = offset();
    const std::string_view run = read_ < readEnd_ ? scalarAt(text_, at, text_.size()) : std::string_view();
    if (!isScalar(run)) failScalar(expected, run);
    ++read_;
    put(at);
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
  std::uint32_t* offsets_;
  std::size_t read_;
  std::size_t readEnd_;
  std::size_t written_ = 0;
  std::size_t nextBackslash_;
  std::vector<Container> open_;
};

}  // namespace

TokenRange indexTokens(std::string_view text, std::uint32_t* offsets, std::size_t first, std::size_t count) {
  return Indexer(text, offsets, first, count).run();
}

}  // namespace vell::json

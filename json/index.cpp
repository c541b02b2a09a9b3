#include "json/index.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "json/error.h"
#include "json/escapes.h"
#include "json/tokenizer.h"
#include "text/display_width.h"

namespace vell::json {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether the text is a number as RFC 8259 spells it (section 6).
bool isNumber(std::string_view text) {
  const auto skip = [&text](std::string_view chars) {
    const bool found = !text.empty() && chars.find(text.front()) != std::string_view::npos;
    text.remove_prefix(found ? 1 : 0);
    return found;
  };
  const auto skipDigits = [&text] {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count > 0;
  };
  skip("-");
  if (!skip("0") && !skipDigits()) return false;
  if (skip(".") && !skipDigits()) return false;
  if (skip("eE")) {
    skip("+-");
    if (!skipDigits()) return false;
  }
  return text.empty();
}

bool isScalar(std::string_view text) {
  return isNumber(text) || text == "true" || text == "false" || text == "null";
}

bool endsScalar(char c) {
  switch (c) {
    case ' ':
    case '\t':
    case '\n':
    case '\r':
    case ',':
    case ':':
    case ']':
    case '}':
    case '[':
    case '{':
    case '"':
      return true;
    default:
      return false;
  }
}

/// How many numbers of the array stay free before the token offsets, which are read while entries are written
/// from its start. An entry takes two numbers and is made of at least two tokens, but for open containers
/// (they have one token so far) and for the innermost value.
std::size_t freeNumbers(std::size_t textSize) { return std::min(textSize, maxDepth) + 2; }

}  // namespace

/// Checks the grammar over a text's tokens and turns their offsets in place into the entries of an index. The
/// stack of open containers is its own: depth costs memory, never call frames.
class Parser {
 public:
  Parser(std::string_view text, const TokenOffsets& tokens)
      : text_(text),
        numbers_(tokens.offsets.get()),
        read_(tokens.first),
        readEnd_(tokens.first + tokens.count),
        nextBackslash_(findBackslash(0)) {}

  void run() {
    value("a value");
    while (!open_.empty()) readOn(open_.back());
    if (read_ < readEnd_) fail("the end of the text");
  }

 private:
  struct Container {
    std::size_t endNumber;  // the place of the number that tells its end
    bool isObject;
    bool isEmpty;
  };

  std::size_t offset() const { return read_ < readEnd_ ? numbers_[read_] : text_.size(); }
  /// The first byte of the next token; NUL at the end of the text.
  char peek() const { return read_ < readEnd_ ? text_[numbers_[read_]] : '\0'; }

  void expect(char token, const char* expected) {
    if (peek() != token) fail(expected);
    ++read_;
  }

  [[noreturn]] void fail(const char* expected) const {
    throw ParseError(std::string("expected ") + expected + ", found " + describeAt(text_, offset()),
                     offset());
  }

  void put(std::size_t begin, std::size_t end) {
    numbers_[written_] = static_cast<std::uint32_t>(begin);
    numbers_[written_ + 1] = static_cast<std::uint32_t>(end);
    written_ += 2;
  }

  /// Reads on in the innermost container up to its end or to the beginning of a container in it.
  void readOn(Container& container) {
    const bool isObject = container.isObject;
    for (;;) {
      if (peek() == (isObject ? '}' : ']')) return end(container);
      const bool isFirst = std::exchange(container.isEmpty, false);
      if (!isFirst) expect(',', isObject ? "',' or '}'" : "',' or ']'");
      if (isObject) key(isFirst ? "a key in double quotes or '}'" : "a key in double quotes");
      if (value(isFirst && !isObject ? "a value or ']'" : "a value")) return;
    }
  }

  void end(const Container& container) {
    ++read_;
    numbers_[container.endNumber] = static_cast<std::uint32_t>(written_ / 2) | Index::mark;
    open_.pop_back();
  }

  void key(const char* expected) {
    if (peek() != '"') fail(expected);
    string();
    expect(':', "':'");
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
    open_.push_back({written_ + 1, peek() == '{', true});
    put(numbers_[read_++], 0);
  }

  void string() {
    const std::size_t open = numbers_[read_++];
    std::size_t close = offset() - 1;
    while (text_[close] != '"') --close;
    const bool escaped = hasBackslash(open, close);
    if (escaped) checkEscapes(text_, open + 1, close);
    put(escaped ? open | Index::mark : open, close);
  }

  void scalar(const char* expected) {
    const std::size_t begin = offset();
    std::size_t end = begin;
    while (end < text_.size() && !endsScalar(text_[end])) ++end;
    const std::string_view scalar = text_.substr(begin, end - begin);
    if (!isScalar(scalar)) failScalar(scalar, expected);
    ++read_;
    put(begin, end);
  }

  [[noreturn]] void failScalar(std::string_view scalar, const char* expected) const {
    if (scalar.empty() || static_cast<unsigned char>(scalar.front()) < 0x20) fail(expected);
    const bool isMeantAsNumber = scalar.front() == '-' || isDigit(scalar.front());
    throw ParseError("'" + text::firstColumns(text::displayText(scalar), 40).text + "' is not a JSON " +
                         (isMeantAsNumber ? "number" : "value"),
                     offset());
  }

  /// Strings are visited in the order of the text, so one search goes through it once for all of them.
  bool hasBackslash(std::size_t from, std::size_t to) {
    if (nextBackslash_ < from) nextBackslash_ = findBackslash(from);
    return nextBackslash_ < to;
  }
  std::size_t findBackslash(std::size_t from) const { return std::min(text_.find('\\', from), text_.size()); }

  std::string_view text_;
  std::uint32_t* numbers_;
  std::size_t read_;
  std::size_t readEnd_;
  std::size_t written_ = 0;
  std::size_t nextBackslash_;
  std::vector<Container> open_;
};

Index::Index(Text text) : text_(std::move(text)) {
  if (text_.size() >= maxSize) throw ParseError("the text holds 2 GiB or more", 0);
  TokenOffsets tokens = tokenize(text_, freeNumbers(text_.size()));
  Parser(text_.view(), tokens).run();
  numbers_ = std::move(tokens.offsets);
}

}  // namespace vell::json

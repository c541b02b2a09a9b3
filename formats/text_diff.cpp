#include "formats/text_diff.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "formats/inline_markdown.h"
#include "text/utf8.h"

namespace vell::formats {
namespace {

using Style = std::uint32_t;

/// Numbers styles, so that they can be compared byte by byte of a text.
class StyleNumbers {
 public:
  Style numberOf(const Attributes& style) {
    std::string key;
    for (const Attribute& entry : style) {
      appendPart(key, entry.key);
      appendPart(key, entry.value);
    }
    return numbers_.try_emplace(std::move(key), static_cast<Style>(numbers_.size())).first->second;
  }

 private:
  static void appendPart(std::string& key, std::string_view part) {
    key.append(std::to_string(part.size())).append(":").append(part);
  }

  std::unordered_map<std::string, Style> numbers_;
};

struct StyledString {
  StyledString(const Text& text, StyleNumbers& numbers) : string(text.string()) {
    styles.reserve(string.size());
    text.forEachRun([&](std::string_view run, const Attributes& style) {
      styles.insert(styles.end(), run.size(), numbers.numberOf(style));
    });
  }

  std::size_t size() const { return string.size(); }
  bool isBoundary(std::size_t at) const { return at == size() || !text::isContinuation(string[at]); }

  std::string_view string;
  std::vector<Style> styles;  ///< of each byte
};

struct Range {
  std::size_t begin;
  std::size_t end;
};

class TextDiff {
 public:
  TextDiff(const Text& old, const Text& now) : old_(old, numbers_), now_(now, numbers_) {}

  std::vector<CommonStretch> stretches();

 private:
  bool same(std::size_t oldAt, std::size_t nowAt) const {
    return old_.string[oldAt] == now_.string[nowAt] && old_.styles[oldAt] == now_.styles[nowAt];
  }
  std::size_t commonAfter(Range old, Range now) const;
  std::size_t commonBefore(Range old, Range now) const;
  static std::vector<Range> wordsOf(const StyledString& text, Range range);
  std::string keyOf(const StyledString& text, Range word) const;
  std::vector<CommonStretch> uniqueWords(Range old, Range now) const;

  StyleNumbers numbers_;
  StyledString old_;
  StyledString now_;
};

/// How far the two agree from the front; whole characters.
std::size_t TextDiff::commonAfter(Range old, Range now) const {
  std::size_t length = 0;
  while (old.begin + length < old.end && now.begin + length < now.end &&
         same(old.begin + length, now.begin + length))
    ++length;
  while (!old_.isBoundary(old.begin + length) || !now_.isBoundary(now.begin + length)) --length;
  return length;
}

/// How far the two agree from the end.
std::size_t TextDiff::commonBefore(Range old, Range now) const {
  std::size_t length = 0;
  while (old.begin + length < old.end && now.begin + length < now.end &&
         same(old.end - length - 1, now.end - length - 1))
    ++length;
  while (!old_.isBoundary(old.end - length)) --length;
  return length;
}

std::vector<Range> TextDiff::wordsOf(const StyledString& text, Range range) {
  std::vector<Range> words;
  for (std::size_t at = range.begin; at < range.end;) {
    const std::size_t begin = at;
    while (at < range.end && !isBlank(text.string[at]) && text.styles[at] == text.styles[begin]) ++at;
    if (at > begin)
      words.push_back({begin, at});
    else
      ++at;
  }
  return words;
}

std::string TextDiff::keyOf(const StyledString& text, Range word) const {
  std::string key(text.string.substr(word.begin, word.end - word.begin));
  return key.append(" ").append(std::to_string(text.styles[word.begin]));
}

/// Words that stand once on both sides, as many as follow one another in the same order.
std::vector<CommonStretch> TextDiff::uniqueWords(Range old, Range now) const {
  struct Places {
    std::size_t oldCount = 0;
    std::size_t nowCount = 0;
    Range old{};
    Range now{};
  };
  std::unordered_map<std::string, Places> places;
  for (const Range word : wordsOf(old_, old)) {
    Places& at = places[keyOf(old_, word)];
    ++at.oldCount;
    at.old = word;
  }
  const std::vector<Range> nowWords = wordsOf(now_, now);
  for (const Range word : nowWords) {
    Places& at = places[keyOf(now_, word)];
    ++at.nowCount;
    at.now = word;
  }
  std::vector<CommonStretch> unique;  // in the order of the text as it is now
  for (const Range word : nowWords) {
    const Places& at = places[keyOf(now_, word)];
    if (at.oldCount == 1 && at.nowCount == 1)
      unique.push_back({at.old.begin, word.begin, word.end - word.begin});
  }
  // The longest sequence that stands in the order of the old text too.
  std::vector<std::size_t>
      lastOf;  // by length of a sequence: the word with the earliest old place that ends one
  std::vector<std::size_t> previous(unique.size());
  for (std::size_t index = 0; index < unique.size(); ++index) {
    const auto isBefore = [&](std::size_t other, std::size_t place) {
      return unique[other].oldBegin < place;
    };
    const auto found = std::lower_bound(lastOf.begin(), lastOf.end(), unique[index].oldBegin, isBefore);
    previous[index] = found == lastOf.begin() ? index : *(found - 1);
    if (found == lastOf.end())
      lastOf.push_back(index);
    else
      *found = index;
  }
  std::vector<CommonStretch> sequence(lastOf.size());
  for (std::size_t count = lastOf.size(), index = count > 0 ? lastOf.back() : 0; count-- > 0;
       index = previous[index])
    sequence[count] = unique[index];
  return sequence;
}

std::vector<CommonStretch> TextDiff::stretches() {
  Range old{0, old_.size()};
  Range now{0, now_.size()};
  const std::size_t front = commonAfter(old, now);
  std::vector<CommonStretch> found{{0, 0, front}};
  old.begin = now.begin = front;
  const std::size_t back = commonBefore(old, now);
  old.end -= back;
  now.end -= back;
  for (const CommonStretch& word : uniqueWords(old, now)) {
    if (word.oldBegin < old.begin || word.nowBegin < now.begin) continue;  // taken with the word before
    const std::size_t before = commonBefore({old.begin, word.oldBegin}, {now.begin, word.nowBegin});
    const std::size_t length = before + commonAfter({word.oldBegin, old.end}, {word.nowBegin, now.end});
    found.push_back({word.oldBegin - before, word.nowBegin - before, length});
    old.begin = word.oldBegin - before + length;
    now.begin = word.nowBegin - before + length;
  }
  found.push_back({old.end, now.end, back});
  return found;
}

}  // namespace

std::vector<CommonStretch> commonStretches(const Text& old, const Text& now) {
  return TextDiff(old, now).stretches();
}

}  // namespace vell::formats

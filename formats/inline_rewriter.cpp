#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>

#include "formats/inline_writer.h"
#include "formats/text_diff.h"

namespace vell::formats {
namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// Pieces that begin or end styles side by side, between which a source may be cut; of more only the outer
/// ones.
constexpr std::size_t maxCuts = 6;

/// Whether a source may be cut within styles, or only where none is open.
enum class Cutting { anywhere, betweenStyles };

/// A place at which a source can be cut: before a piece, or within a piece of text.
struct Cut {
  std::size_t piece;
  std::size_t offset;  ///< bytes into the piece
};

/// Inline source with what it says.
class InlineSource {
 public:
  InlineSource(std::string_view source, LineFeeds lineFeeds);

  const Text& text() const { return text_; }

  /// The places at which the source says that much of its text, first to last.
  std::vector<Cut> cutsAt(std::size_t textOffset, Cutting cutting) const;
  std::size_t offsetOf(Cut cut) const;
  Cut end() const { return {pieces_.size(), 0}; }
  std::size_t size() const { return source_.size(); }
  /// The pieces that open the styles around the cut, the outer ones first.
  std::vector<std::size_t> stylesAround(Cut cut) const;
  const Attributes& styleOf(std::size_t open) const { return pieces_[open].style; }
  bool isCode(std::size_t open) const { return source_[pieces_[open].begin] == '`'; }
  bool isAutolink(std::size_t open) const { return source_[pieces_[open].begin] == '<'; }

  void copyOpen(Draft& draft, std::size_t open) const { draft.addPiece(source_, pieces_[open]); }
  void copyClose(Draft& draft, std::size_t open) const { draft.addPiece(source_, pieces_[closeOf_[open]]); }
  void copy(Draft& draft, Cut from, Cut to) const;

 private:
  std::string_view source_;
  std::vector<Piece> pieces_;
  Text text_;
  // For each piece, and for the end:
  std::vector<std::size_t> textBefore_;  ///< bytes of the text
  std::vector<std::size_t> around_;      ///< the piece that opens the innermost style around it
  std::vector<std::size_t> closeOf_;     ///< of a piece that opens a style: the one that closes it
};

InlineSource::InlineSource(std::string_view source, LineFeeds lineFeeds)
    : source_(source),
      pieces_(readPieces(source, lineFeeds)),
      text_(textOf(source, pieces_)),
      closeOf_(pieces_.size(), none) {
  std::size_t said = 0;
  std::size_t inside = none;
  for (std::size_t index = 0; index < pieces_.size(); ++index) {
    textBefore_.push_back(said);
    around_.push_back(inside);
    said += textOf(source, pieces_[index]).size();
    if (pieces_[index].kind == Piece::Kind::open) {
      inside = index;
    } else if (pieces_[index].kind == Piece::Kind::close) {
      closeOf_[inside] = index;
      inside = around_[inside];
    }
  }
  textBefore_.push_back(said);
  around_.push_back(inside);
}

std::vector<Cut> InlineSource::cutsAt(std::size_t textOffset, Cutting cutting) const {
  const auto [first, last] = std::equal_range(textBefore_.begin(), textBefore_.end(), textOffset);
  std::vector<Cut> cuts;
  for (auto place = first; place != last; ++place)
    cuts.push_back({static_cast<std::size_t>(place - textBefore_.begin()), 0});
  if (cuts.empty()) {
    const auto piece = static_cast<std::size_t>(first - textBefore_.begin()) - 1;
    cuts.push_back({piece, textOffset - textBefore_[piece]});
  }
  if (cutting == Cutting::betweenStyles)
    std::erase_if(cuts, [&](Cut cut) { return around_[cut.piece] != none; });
  if (cuts.size() > maxCuts) cuts.erase(cuts.begin() + maxCuts / 2, cuts.end() - maxCuts / 2);
  return cuts;
}

std::size_t InlineSource::offsetOf(Cut cut) const {
  return cut.piece < pieces_.size() ? pieces_[cut.piece].begin + cut.offset : source_.size();
}

std::vector<std::size_t> InlineSource::stylesAround(Cut cut) const {
  std::vector<std::size_t> styles;
  for (std::size_t open = around_[cut.piece]; open != none; open = around_[open]) styles.push_back(open);
  std::reverse(styles.begin(), styles.end());
  return styles;
}

void InlineSource::copy(Draft& draft, Cut from, Cut to) const {
  for (std::size_t index = from.piece; index <= to.piece && index < pieces_.size(); ++index) {
    Piece piece = pieces_[index];
    if (index == to.piece) piece.end = piece.begin + to.offset;
    if (index == from.piece) piece.begin += from.offset;
    draft.addPiece(source_, piece);
  }
}

/// Writes what a text says now with as much of its source as stretches of it tell.
class Rewriter {
 public:
  Rewriter(const InlineSource& old, const Text& now) : old_(old), now_(now), ranges_(rangesOf(now)) {}

  /// Leaves words and styles that are changed in part out of what is kept.
  std::vector<CommonStretch> narrowedToWords(const std::vector<CommonStretch>& kept) const;
  Draft rewrite(const std::vector<CommonStretch>& kept, Cutting cutting, StyleForm form) const;

 private:
  /// What stands in the source between two stretches that are kept, and in its place now.
  struct Gap {
    Cut from;
    Cut to;
    Draft written;
  };

  bool isBetween(std::size_t at) const;
  Gap fillGap(const CommonStretch& before, const CommonStretch& behind, Cutting cutting,
              StyleForm form) const;
  Draft fill(Cut from, Cut to, const std::vector<StyledRange>& ranges, StyleForm form) const;
  bool goesOn(std::size_t open, const std::vector<StyledRange>& ranges) const;
  void write(Draft& draft, std::vector<StyledRange> ranges, std::span<const std::size_t> inside,
             StyleForm form) const;
  std::vector<StyledRange> rangesBetween(std::size_t begin, std::size_t end) const;

  const InlineSource& old_;
  const Text& now_;
  std::vector<StyledRange> ranges_;
};

std::vector<CommonStretch> Rewriter::narrowedToWords(const std::vector<CommonStretch>& kept) const {
  std::vector<CommonStretch> narrowed;
  for (const CommonStretch& stretch : kept) {
    const bool isFront = &stretch == &kept.front();
    const bool isBack = &stretch == &kept.back();
    const auto isBetweenWords = [&](std::size_t at) {
      return isBetween(stretch.nowBegin + at) &&
             !old_.cutsAt(stretch.oldBegin + at, Cutting::betweenStyles).empty();
    };
    std::size_t begin = 0;
    std::size_t end = stretch.length;
    while (!isFront && begin < end && !isBetweenWords(begin)) ++begin;
    while (!isBack && end > begin && !isBetweenWords(end)) --end;
    if (begin < end || isFront || isBack)
      narrowed.push_back({stretch.oldBegin + begin, stretch.nowBegin + begin, end - begin});
  }
  return narrowed;
}

/// True where in the text as it is now no word goes on and no style.
bool Rewriter::isBetween(std::size_t at) const {
  const std::string& text = now_.string();
  if (at == 0 || at == text.size()) return true;
  if (!isBlank(text[at - 1]) && !isBlank(text[at])) return false;
  const std::vector<StyledRange> around = rangesBetween(at - 1, at + 1);
  return around.front().style.empty() || around.back().style.empty();
}

Draft Rewriter::rewrite(const std::vector<CommonStretch>& kept, Cutting cutting, StyleForm form) const {
  Draft draft;
  Cut copied{0, 0};
  for (std::size_t index = 0; index + 1 < kept.size(); ++index) {
    const Gap gap = fillGap(kept[index], kept[index + 1], cutting, form);
    old_.copy(draft, copied, gap.from);
    draft.add(gap.written);
    copied = gap.to;
  }
  old_.copy(draft, copied, old_.end());
  return draft;
}

/// Of all ways to cut the source at these places the one that gives the shortest text, and keeps most of it.
Rewriter::Gap Rewriter::fillGap(const CommonStretch& before, const CommonStretch& behind, Cutting cutting,
                                StyleForm form) const {
  const std::vector<StyledRange> ranges = rangesBetween(before.nowBegin + before.length, behind.nowBegin);
  std::optional<Gap> best;
  std::pair<std::size_t, std::size_t> bestCost;
  for (const Cut from : old_.cutsAt(before.oldBegin + before.length, cutting)) {
    for (const Cut to : old_.cutsAt(behind.oldBegin, cutting)) {
      if (old_.offsetOf(to) < old_.offsetOf(from)) continue;
      Draft written = fill(from, to, ranges, form);
      const std::size_t dropped = old_.offsetOf(to) - old_.offsetOf(from);
      const std::pair cost(old_.size() - dropped + written.source().size(), dropped);
      if (best && cost >= bestCost) continue;
      bestCost = cost;
      best = Gap{from, to, std::move(written)};
    }
  }
  return std::move(*best);
}

/// Styles that are open at both cuts and can go on in between stay open; others end before and begin behind.
Draft Rewriter::fill(Cut from, Cut to, const std::vector<StyledRange>& ranges, StyleForm form) const {
  const std::vector<std::size_t> before = old_.stylesAround(from);
  const std::vector<std::size_t> behind = old_.stylesAround(to);
  const std::size_t most = std::min(before.size(), behind.size());
  std::size_t shared = 0;
  while (shared < most && before[shared] == behind[shared] && goesOn(before[shared], ranges)) ++shared;
  Draft draft;
  for (std::size_t open = before.size(); open-- > shared;) old_.copyClose(draft, before[open]);
  write(draft, ranges, std::span(before).first(shared), form);
  for (std::size_t open = shared; open < behind.size(); ++open) old_.copyOpen(draft, behind[open]);
  return draft;
}

/// Whether the ranges can be written within the style that a piece opens.
bool Rewriter::goesOn(std::size_t open, const std::vector<StyledRange>& ranges) const {
  const auto hasStyle = [&](const StyledRange& range) {
    const Attributes& style = old_.styleOf(open);
    return std::all_of(style.begin(), style.end(), [&](const Attribute& entry) {
      const std::string* value = range.style.find(entry.key);
      return value && *value == entry.value;
    });
  };
  const auto fitsCode = [&](const StyledRange& range) {
    const std::string_view string =
        std::string_view(now_.string()).substr(range.begin, range.end - range.begin);
    return std::none_of(string.begin(), string.end(), [](char c) { return c == '`' || isControl(c); });
  };
  return !old_.isAutolink(open) && std::all_of(ranges.begin(), ranges.end(), hasStyle) &&
         (!old_.isCode(open) || std::all_of(ranges.begin(), ranges.end(), fitsCode));
}

void Rewriter::write(Draft& draft, std::vector<StyledRange> ranges, std::span<const std::size_t> inside,
                     StyleForm form) const {
  for (StyledRange& range : ranges) {
    for (const std::size_t open : inside) {
      for (const Attribute& entry : old_.styleOf(open)) range.style.remove(entry.key);
    }
  }
  if (!inside.empty() && old_.isCode(inside.back())) {  // what stands in code cannot be escaped
    for (const StyledRange& range : ranges)
      draft.addMarkup(std::string_view(now_.string()).substr(range.begin, range.end - range.begin));
  } else {
    appendRanges(draft, now_.string(), ranges, form);
  }
}

std::vector<StyledRange> Rewriter::rangesBetween(std::size_t begin, std::size_t end) const {
  std::vector<StyledRange> between;
  const auto endsBefore = [](const StyledRange& range, std::size_t at) { return range.end <= at; };
  for (auto range = std::lower_bound(ranges_.begin(), ranges_.end(), begin, endsBefore);
       range != ranges_.end() && range->begin < end; ++range)
    between.push_back({std::max(range->begin, begin), std::min(range->end, end), range->style});
  return between;
}

/// True if the text is written as it is.
bool isLiteral(std::string_view text) {
  std::string markup;
  appendInline(markup, Text(std::string(text)));
  return markup == text;
}

}  // namespace

std::string rewriteInline(std::string_view source, const Text& now, LineFeeds lineFeeds) {
  // Usual texts hold nothing that could be kept: where all rows changed, saving takes half the time.
  if (now.isPlain() && isLiteral(now.string()) && isLiteral(source)) return now.string();
  const InlineSource old(source, lineFeeds);
  if (old.text() == now) return std::string(source);
  const Rewriter rewriter(old, now);
  const std::vector<CommonStretch> common = commonStretches(old.text(), now);
  const std::vector<CommonStretch> words = rewriter.narrowedToWords(common);
  for (const auto& [kept, cutting, form] :
       {std::tuple(&common, Cutting::anywhere, StyleForm::marks),
        std::tuple(&words, Cutting::betweenStyles, StyleForm::marks),
        std::tuple(&words, Cutting::betweenStyles, StyleForm::brackets)}) {
    Draft draft = rewriter.rewrite(*kept, cutting, form);
    if (draft.settle(now, lineFeeds)) return draft.source();
  }
  std::string rendered;
  appendInline(rendered, now);
  return rendered;
}

}  // namespace vell::formats

#include "tests/formats/changed_file.h"

#include <algorithm>
#include <stdexcept>

#include "formats/inline_markdown.h"
#include "formats/markdown_format.h"

namespace vell::formats {
namespace {

constexpr Timestamp readTime = 1'790'000'000'000;  // 2026-09-21T14:13:20Z
constexpr Timestamp changeTime = readTime + 5'000;
constexpr std::string_view kindNames[changeKinds] = {"text",   "append", "type",  "attribute", "persistentId",
                                                     "remove", "before", "after", "child",     "move"};

/// Seed 0 stands for what people do all day, the others for what is easily misread.
Text newText(OutlineGenerator& random, unsigned seed) {
  return seed == 0 ? Text("new words") : random.styledText();
}

/// Whether an id stands in the text more than once: the first row keeps it, and loses it when another comes
/// first.
bool repeatsIds(const Outline& outline, std::string_view text) {
  for (const Row* row = outline.root().firstChild(); row; row = nextInOrder(row, &outline.root())) {
    const std::string& id = row->persistentId();
    std::size_t count = 0;
    for (std::size_t at = 0; !id.empty() && (at = text.find(id, at)) != text.npos; ++at) {
      count += at > 0 && std::string_view("#\"'").find(text[at - 1]) != std::string_view::npos;
    }
    if (count > 1) return true;
  }
  return false;
}

bool isWithin(const Row& row, const Row& top) { return &row == &top || document::isAncestor(top, row); }

}  // namespace

Holds heldBy(const Format& format) {
  if (format.name == "markdown") return {.times = false};
  if (format.name == "opml") return {.controls = false};
  if (format.name == "txt") return {.styles = false, .times = false, .lineEnds = false};
  return {};
}

ChangedFile::ChangedFile(std::string_view format, std::string_view text)
    : format_(*formatNamed(format)), holds_(heldBy(format_)), edit_(outline_, changeTime) {
  readFile(format_, std::string(text), {readTime}, outline_);
  // Files that were not made here tell no times of what is new.
  if (outline_.created() == readTime) holds_.times = false;
}

void ChangedFile::undo() {
  for (headless::Change& change : edit_.take()) changes_.push_back(std::move(change));
  headless::undo(outline_, changes_);
  changes_.clear();
  story_ += "undone; ";
}

Text ChangedFile::parse(std::string_view markdown) { return parseInline(markdown); }

const Row& ChangedFile::row(std::string_view text) const {
  const Row* row = &outline_.root();
  while (row && row->text().string() != text) row = nextInOrder(row, &outline_.root());
  if (!row) throw std::out_of_range("no row \"" + std::string(text) + "\"");
  return *row;
}

bool ChangedFile::change(std::size_t place, ChangeKind kind, unsigned seed) {
  outline_.number();
  const Row& row = *outline_.rowsInOrder().at(place + 1);
  const bool isSource = changes_.empty();
  if (isSource) story_.clear();
  OutlineGenerator random(seed, holds_);
  const Row* before = nullptr;
  const Row* parent = row.parent();
  switch (kind) {
    case ChangeKind::text:
    case ChangeKind::append: {
      if (!headless::carriesText(row.type())) return false;
      Text text = kind == ChangeKind::append ? row.text() : Text();
      text.append(newText(random, seed));
      edit_.setText(row, std::move(text));
      break;
    }
    case ChangeKind::type:
      if (!holds_.styles) return false;
      edit_.setType(row, document::rowTypes[(place + seed) % document::rowTypes.size()]);
      break;
    case ChangeKind::attribute: {
      if (!holds_.styles) return false;
      Attributes attributes = row.attributes();
      attributes.set("color", "red");
      if (seed != 0) {
        for (const Attribute& entry : random.attributes("done")) attributes.set(entry.key, entry.value);
      }
      if (seed % 3 == 2) {  // a heading's level is that of the headings below it
        const std::string* level = row.attributes().find("level");
        attributes = {};
        if (level) attributes.set("level", *level);
      }
      edit_.setAttributes(row, std::move(attributes));
      break;
    }
    case ChangeKind::persistentId:
      if (!holds_.styles) return false;
      edit_.setPersistentId(row, seed == 0 ? "new-id" : seed % 3 == 2 ? "" : random.text() + "new id");
      break;
    case ChangeKind::remove:
      if (isSource) {
        const Row* last = &row;
        while (last->lastChild()) last = last->lastChild();
        free_ = around({span(row).begin, std::max(span(row).closeEnd, span(*last).end)});
        if (!row.previous() && !row.next()) {
          const Range above = around(ownLines(*parent));
          free_ = {std::min(free_.begin, above.begin), std::max(free_.end, above.end)};
        }
      }
      edit_.remove(row);
      break;
    case ChangeKind::before:
    case ChangeKind::after:
    case ChangeKind::child: {
      before = kind == ChangeKind::before ? &row : kind == ChangeKind::after ? row.next() : row.firstChild();
      if (kind == ChangeKind::child) parent = &row;
      if (isSource) free_ = beside(*parent, before);
      headless::NewRow content{.type = row.type(), .text = newText(random, seed)};
      if (seed != 0) {
        content.type = document::rowTypes[random.below(document::rowTypes.size())];
        content.attributes = random.attributes("done");
      }
      if (!headless::carriesText(content.type)) content.text = Text();
      if (!holds_.styles) content = {.text = content.text};
      edit_.insert(edit_.make(std::move(content)), *parent, before);
      break;
    }
    case ChangeKind::move: {
      const Row* to = outline_.rowsInOrder()[random.below(outline_.rowCount() + 1)];
      if (isWithin(*to, row)) return false;
      for (before = to->firstChild(); before && random.below(2) == 0;) before = before->next();
      free_ = {0, outline_.source()->text().size()};
      edit_.place(row, *to, before);
      break;
    }
  }
  if (edit_.empty()) return false;
  if (isSource && kind < ChangeKind::remove) free_ = ownLines(row);
  if (isSource && kind == ChangeKind::type) free_ = around(free_);
  story_.append(kindNames[static_cast<std::size_t>(kind)]).append(" of row ").append(std::to_string(place));
  story_.append(", seed ").append(std::to_string(seed)).append("; ");
  for (headless::Change& change : edit_.take()) changes_.push_back(std::move(change));
  return true;
}

bool ChangedFile::isFaulty() const {
  const std::string& text = outline_.source()->text();
  const std::string content = dump(outline_, holds_);
  const auto holds = [&](std::string_view escape) { return content.find(escape) != std::string::npos; };
  return repeatsIds(outline_, text) || (!holds_.controls && (holds("\\u00") || holds("\\b") || holds("\\f")));
}

std::string ChangedFile::differs() const {
  const std::string written = this->written();
  return written == outline_.source()->text() ? "" : "differs from what was read:\n" + written;
}

/// Parts of the file are checked by themselves where one of its rows changed: each part must read as it does
/// in the whole file, and that however few rows it has.
std::string ChangedFile::readsOtherwise() const {
  std::string fault = readsOtherwise(written());
  if (!fault.empty() || format_.name != "markdown") return fault;
  Format inParts = format_;
  inParts.update = [](const Outline& outline) { return updateMarkdown(outline, 1); };
  return readsOtherwise(fileText(inParts, outline_).string());
}

std::string ChangedFile::readsOtherwise(const std::string& written) const {
  Outline again;
  try {
    readFile(format_, written, {readTime}, again);
  } catch (const FormatError& error) {
    return std::string("cannot be read: ") + error.what() + "\n" + written;
  }
  const std::string expected = dump(outline_, holds_);
  const std::string found = dump(again, holds_);
  if (found == expected) return "";
  return "rows:" + expected + "\nread back as:" + found + "\nfrom:\n" + written;
}

std::string ChangedFile::touchesOthers() const {
  const std::string_view before = outline_.source()->text();
  const std::string written = this->written();
  const std::string_view head = before.substr(0, free_.begin);
  const std::string_view tail = before.substr(free_.end);
  if (written.size() >= head.size() + tail.size() && written.starts_with(head) && written.ends_with(tail)) {
    return "";
  }
  return "changes more than bytes " + std::to_string(free_.begin) + " to " + std::to_string(free_.end) +
         ":\n" + written;
}

/// What rows call their own, in the order of the text.
std::vector<ChangedFile::Range> ChangedFile::pieces() const {
  std::vector<Range> pieces;
  for (const Row* row = outline_.root().firstChild(); row; row = nextInOrder(row, &outline_.root())) {
    const SourceSpan& own = span(*row);
    pieces.push_back({own.begin, own.end});
    if (own.closeEnd != 0) pieces.push_back({own.closeBegin, own.closeEnd});
  }
  std::sort(pieces.begin(), pieces.end(), [](Range a, Range b) { return a.begin < b.begin; });
  return pieces;
}

/// The row's own lines, with those of its children where it closes behind them.
ChangedFile::Range ChangedFile::ownLines(const Row& row) const {
  if (&row == &outline_.root()) return {0, outline_.source()->text().size()};
  return {span(row).begin, std::max(span(row).end, span(row).closeEnd)};
}

/// The range with what separates it from its neighbours.
ChangedFile::Range ChangedFile::around(Range range) const {
  const std::string_view text = outline_.source()->text();
  std::size_t begin =
      std::min(text.find_last_not_of(" \t\r\n", range.begin - (range.begin > 0)) + 1, range.begin);
  std::size_t end = std::min(text.find_first_not_of(" \t\r\n", range.end), text.size());
  for (const Range piece : pieces()) {
    if (piece.begin == range.begin && piece.end == range.end) continue;
    if (piece.end <= range.begin) begin = piece.end;
    if (piece.begin >= range.end) {
      end = piece.begin;
      break;
    }
  }
  return {begin, end};
}

/// What a new row there may change.
ChangedFile::Range ChangedFile::beside(const Row& parent, const Row* before) const {
  if (before) return around({span(*before).begin, span(*before).begin});
  const Row* last = parent.lastChild();
  if (!last) {
    const bool encloses = format_.name == "opml" || format_.name == "json";
    return encloses ? ownLines(parent) : around({span(parent).end, span(parent).end});
  }
  while (span(*last).closeEnd == 0 && last->lastChild()) last = last->lastChild();
  return around({ownLines(*last).end, ownLines(*last).end});
}

}  // namespace vell::formats

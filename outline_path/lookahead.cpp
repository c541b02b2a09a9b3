#include "outline_path/lookahead.h"

#include <algorithm>

#include "outline_path/characters.h"
#include "outline_path/tokens.h"

namespace vell::outline_path {
namespace {

constexpr std::size_t none = std::string_view::npos;

std::size_t skipMinusSigns(std::string_view text, std::size_t at) {
  while (text.substr(at).starts_with(spelling(UnaryOp::negate))) ++at;
  return at;
}

/// The offset behind the string that begins at `quote`, or the end of `text` where it is not closed.
std::size_t behindString(std::string_view text, std::size_t quote) {
  std::size_t at = quote + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

/// For each opening bracket the offset behind the one that closes it, `none` where there is none.
std::vector<std::size_t> pairBrackets(std::string_view text) {
  std::vector<std::size_t> behind(text.size(), none);
  std::vector<std::size_t> open;
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at];
    if (c == '(') open.push_back(at);
    if (c == ')' && !open.empty()) {
      behind[open.back()] = at + 1;
      open.pop_back();
    }
    at = c == '"' ? behindString(text, at) : at + 1;
  }
  return behind;
}

}  // namespace

bool Lookahead::failed(Construct construct, std::size_t at) const {
  return !failures_.empty() && (failures_[at] & static_cast<std::uint8_t>(construct)) != 0;
}

void Lookahead::noteFailure(Construct construct, std::size_t at) {
  if (failures_.empty()) failures_.resize(text_.size() + 1);
  failures_[at] |= static_cast<std::uint8_t>(construct);
}

bool Lookahead::relationFollows(std::size_t at) {
  missingRelation_.reset();
  Comparison found = Comparison::unknown;
  std::size_t behindChain = none;
  for (std::size_t operand = at; operand != none && found == Comparison::unknown;) {
    const std::size_t end = operandEnd(operand);
    if (end == none) break;
    const Comparison known = comparisonAt(operand);
    behindChain = skipBlanks(text_, end);
    const bool mayCompare = isOpenCall(operand) || relationAt(text_.substr(behindChain));
    found = known == Comparison::unknown && mayCompare ? Comparison::possible : known;
    operand = nextOperand(behindChain);
  }
  if (behindChain == none) return false;
  if (found == Comparison::unknown) {
    found = Comparison::impossible;
    missingRelation_ = behindChain;
  }
  for (std::size_t operand = at; operand < behindChain && comparisonAt(operand) == Comparison::unknown;) {
    comparisonAt(operand) = found;
    operand = nextOperand(skipBlanks(text_, operandEnd(operand)));
  }
  return found == Comparison::possible;
}

void Lookahead::noteFailedComparison(std::size_t at) {
  missingRelation_.reset();
  for (std::size_t end = operandEnd(at); end != none; end = operandEnd(at)) {
    comparisonAt(at) = Comparison::impossible;
    const std::size_t next = nextOperand(skipBlanks(text_, end));
    if (next == none || operandFailed(at)) return;
    at = next;
  }
}

Lookahead::Comparison& Lookahead::comparisonAt(std::size_t at) {
  if (comparisons_.empty()) comparisons_.resize(text_.size() + 1);
  return comparisons_[at];
}

bool Lookahead::operandFailed(std::size_t at) const {
  at = skipMinusSigns(text_, at);
  const std::size_t inside = at + functionNameLength(text_.substr(at)) + 1;
  return inside <= text_.size() &&
         (failed(Construct::valueGroup, inside) || failed(Construct::functionCall, inside));
}

/// The end of the operand at `at`, `none` where there is none.
std::size_t Lookahead::operandEnd(std::size_t at) {
  ++steps_;
  at = skipMinusSigns(text_, at);
  const std::string_view rest = text_.substr(at);
  if (rest.empty()) return none;
  if (rest.front() == '@' || rest.front() == '$') {
    const std::size_t length = nameLength(rest.substr(1));
    return length == 0 ? none : at + 1 + length;
  }
  if (rest.front() == '"') return behindString(text_, at);
  if (rest.front() == '(') return behindBracket(at);
  if (const std::size_t length = functionNameLength(rest); length != 0)
    return std::min(behindBracket(at + length), text_.size());
  const std::size_t length = wordLength(rest);
  return length == 0 || isKeyword(rest.substr(0, length)) ? none : at + length;
}

bool Lookahead::isOpenCall(std::size_t operand) {
  const std::size_t at = skipMinusSigns(text_, operand);
  const std::size_t length = functionNameLength(text_.substr(at));
  const bool isOpen = length != 0 && behindBracket(at + length) == none;
  sawOpenCall_ = sawOpenCall_ || isOpen;
  return isOpen;
}

/// The operand behind the arithmetic sign at `sign`, `none` where there is no such sign.
std::size_t Lookahead::nextOperand(std::size_t sign) const {
  const std::string_view rest = text_.substr(sign);
  const std::size_t next = skipBlanks(text_, std::min(sign + 1, text_.size()));
  if (rest.starts_with(spelling(MultiplicativeOp::divide)))
    return isDivisor(text_.substr(next)) ? next : none;
  const bool isSign = rest.starts_with(spelling(MultiplicativeOp::multiply)) ||
                      rest.starts_with(spelling(AdditiveOp::add)) ||
                      rest.starts_with(spelling(AdditiveOp::subtract));
  return isSign ? next : none;
}

std::size_t Lookahead::behindBracket(std::size_t open) {
  if (brackets_.empty()) brackets_ = pairBrackets(text_);
  return brackets_[open];
}

}  // namespace vell::outline_path

#include "outline_path/lookahead.h"

#include <algorithm>

namespace vell::outline_path {
namespace {

/// A note beside the constructs that failed.
constexpr std::uint8_t kRelationFollows = 32;

constexpr std::size_t kNone = std::string_view::npos;

/// What a relation or an arithmetic sign begins with.
constexpr Characters kContinuations = [] {
  Characters characters;
  for (const std::string_view relation : kRelationOps) characters.add(relation.front());
  for (const char sign : kAdditiveOps) characters.add(sign);
  for (const char sign : kMultiplicativeOps) characters.add(sign);
  return characters;
}();

bool hasDoubleColon(std::string_view word) {
  for (std::size_t i = 1; i < word.size(); ++i) {
    if (word[i] == ':' && word[i - 1] == ':') return true;
  }
  return false;
}

bool isFunctionName(std::string_view word) {
  return lengthOf(kStartsName, word) != 0 && !isKeyword(word) && !isConstant(word) && !hasDoubleColon(word);
}

}  // namespace

std::size_t skipBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && isBlank(text[at])) ++at;
  return at;
}

void Lookahead::note(std::uint8_t flag, std::size_t at) {
  if (notes_.empty()) notes_.resize(text_.size() + 1);
  notes_[at] |= flag;
}

inline std::size_t Lookahead::operandEnd(std::size_t at) {
  if (at < text_.size() && (text_[at] == '@' || text_[at] == '$')) {
    const std::size_t length = nameLengthAt(at + 1);
    return length == 0 ? kNone : at + 1 + length;
  }
  return otherOperandEnd(at);
}

bool Lookahead::relationFollows(std::size_t at) {
  if (!notes_.empty()) {
    if (failed(Construct::comparison, at)) return false;
    if (noted(kRelationFollows, at)) return true;
  }
  const std::size_t end = operandEnd(at);
  if (end == kNone) return false;
  const std::size_t sign = skipBlanks(text_, end);
  if (sign == text_.size() || !kContinuations.has(text_[sign])) return false;
  return relation(sign) || relationFollowsChain(at, nextOperand(sign));
}

bool Lookahead::relationFollowsChain(std::size_t first, std::size_t next) {
  if (next == kNone) return false;
  for (std::size_t end = operandEnd(next); end != kNone; end = operandEnd(next)) {
    const std::size_t sign = skipBlanks(text_, end);
    if (sign == text_.size() || !kContinuations.has(text_[sign])) break;
    if (relation(sign)) return true;
    next = nextOperand(sign);
    if (next == kNone) break;
  }
  // Asked again at a later operand of the chain, the answer is then at hand.
  noteChain(first, static_cast<std::uint8_t>(Construct::comparison));
  return false;
}

void Lookahead::noteChain(std::size_t at, std::uint8_t flag) {
  note(flag, at);
  for (std::size_t end = operandEnd(at); end != kNone; end = operandEnd(at)) {
    const std::size_t next = nextOperand(skipBlanks(text_, end));
    if (next == kNone) return;
    if (flag != kRelationFollows && operandFailed(at)) flag = kRelationFollows;
    at = next;
    if (flag == kRelationFollows && noted(flag, at)) return;
    note(flag, at);
  }
}

void Lookahead::noteFailedComparison(std::size_t at) {
  noteChain(at, static_cast<std::uint8_t>(Construct::comparison));
}

std::optional<std::size_t> Lookahead::missingRelation(std::size_t at) {
  if (failed(Construct::comparison, at)) return std::nullopt;
  std::optional<std::size_t> missing;
  for (std::size_t end = operandEnd(at); end != kNone; end = operandEnd(at)) {
    missing = skipBlanks(text_, end);
    if (relation(*missing)) return std::nullopt;
    at = nextOperand(*missing);
    if (at == kNone) break;
  }
  return missing;
}

bool Lookahead::operandFailed(std::size_t at) const {
  while (at < text_.size() && text_[at] == spelling(UnaryOp::negate)) ++at;
  return failed(Construct::valueGroup, at) || failed(Construct::functionCall, at);
}

std::size_t Lookahead::otherOperandEnd(std::size_t at) {
  if (at == text_.size()) return kNone;
  const char c = text_[at];
  if (c == spelling(UnaryOp::negate))
    return operandEnd(std::min(text_.find_first_not_of(c, at), text_.size()));
  if (c == '"') return behindString(text_, at);
  return c == '(' ? brackets_.behind(at) : wordOperandEnd(at);
}

/// A function call, or else a number, constant or other word that may be a value.
std::size_t Lookahead::wordOperandEnd(std::size_t at) {
  const std::string_view word = text_.substr(at, wordLength(text_.substr(at)));
  const std::size_t end = at + word.size();
  if (word.empty()) return kNone;
  if (end < text_.size() && text_[end] == '(' && isFunctionName(word)) {
    lastCall_ = at;
    lastCallLength_ = word.size();
    return brackets_.behind(end);
  }
  return isKeyword(word) ? kNone : end;
}

/// The operand behind the arithmetic sign at `sign`.
std::size_t Lookahead::nextOperand(std::size_t sign) const {
  if (sign == text_.size()) return kNone;
  const std::size_t next = skipBlanks(text_, sign + 1);
  const char c = text_[sign];
  if (c == spelling(MultiplicativeOp::divide)) return isDivisor(next) ? next : kNone;
  const bool isSign = c == spelling(AdditiveOp::add) || c == spelling(AdditiveOp::subtract) ||
                      c == spelling(MultiplicativeOp::multiply);
  return isSign ? next : kNone;
}

bool Lookahead::isDivisor(std::size_t at) const {
  if (at >= text_.size()) return false;
  const char c = text_[at];
  if (c == '@' || c == '$' || c == '(' || c == '"') return true;
  const std::string_view rest = text_.substr(at);
  if (isDigit(c)) return isNumber(rest.substr(0, wordLength(rest)));
  return functionNameLength(at) != 0;
}

std::size_t Lookahead::functionNameLength(std::size_t at) const {
  if (at == lastCall_) return lastCallLength_;
  const std::string_view rest = text_.substr(at);
  const std::size_t length = wordLength(rest);
  if (length == 0 || length == rest.size() || rest[length] != '(') return 0;
  return isFunctionName(rest.substr(0, length)) ? length : 0;
}

}  // namespace vell::outline_path

#include "outline_path/lookahead.h"

#include <algorithm>

#include "outline_path/characters.h"
#include "outline_path/operators.h"

namespace vell::outline_path {
namespace {

constexpr std::size_t kUnpaired = std::string_view::npos;
/// A note beside the constructs that failed.
constexpr std::uint8_t kRelationFollows = 32;

/// The length of the number, constant or other word at the beginning of `text` that may be a value.
std::size_t valueWordLength(std::string_view text) {
  const std::size_t length = wordLength(text);
  return length == 0 || isKeyword(text.substr(0, length)) ? 0 : length;
}

}  // namespace

std::size_t behindString(std::string_view text, std::size_t quote) {
  std::size_t at = quote + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

std::size_t skipBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && isBlank(text[at])) ++at;
  return at;
}

void Lookahead::note(std::uint8_t flag, std::size_t at) {
  if (notes_.empty()) notes_.resize(text_.size() + 1);
  notes_[at] |= flag;
}

bool Lookahead::relationFollows(std::size_t at) {
  if (failed(Construct::comparison, at)) return false;
  if (noted(kRelationFollows, at)) return true;
  const std::size_t first = at;
  bool several = false;
  for (auto end = operandEnd(at); end; end = operandEnd(at)) {
    if (relationAt(text_.substr(skipBlanks(text_, *end)))) return true;
    const auto next = nextOperand(*end);
    if (!next) break;
    several = true;
    at = *next;
  }
  // Asked again at a later operand of the chain, the answer is then at hand.
  if (several) noteChain(first, static_cast<std::uint8_t>(Construct::comparison));
  return false;
}

void Lookahead::noteChain(std::size_t at, std::uint8_t flag) {
  note(flag, at);
  for (auto end = operandEnd(at); end; end = operandEnd(at)) {
    const auto next = nextOperand(*end);
    if (!next) return;
    if (flag != kRelationFollows && operandFailed(at)) flag = kRelationFollows;
    at = *next;
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
  for (auto end = operandEnd(at); end; end = operandEnd(at)) {
    missing = skipBlanks(text_, *end);
    if (relationAt(text_.substr(*missing))) return std::nullopt;
    const auto next = nextOperand(*end);
    if (!next) break;
    at = *next;
  }
  return missing;
}

bool Lookahead::operandFailed(std::size_t at) const {
  while (at < text_.size() && text_[at] == spelling(UnaryOp::negate)) ++at;
  return failed(Construct::valueGroup, at) || failed(Construct::functionCall, at);
}

std::optional<std::size_t> Lookahead::operandEnd(std::size_t at) {
  while (at < text_.size() && text_[at] == spelling(UnaryOp::negate)) ++at;
  if (at == text_.size()) return std::nullopt;
  const std::string_view rest = text_.substr(at);
  if (rest.front() == '"') return behindString(text_, at);
  const bool named = rest.front() == '@' || rest.front() == '$';
  std::size_t length = named ? nameLength(rest.substr(1)) : functionNameLength(at);
  if (named) return length == 0 ? std::nullopt : std::optional(at + 1 + length);
  if (rest.front() == '(' || length != 0) {
    const std::size_t behind = behindBracket(at + length);
    return behind == kUnpaired ? std::nullopt : std::optional(behind);
  }
  length = valueWordLength(rest);
  return length == 0 ? std::nullopt : std::optional(at + length);
}

std::optional<std::size_t> Lookahead::nextOperand(std::size_t end) const {
  const std::size_t sign = skipBlanks(text_, end);
  if (sign == text_.size()) return std::nullopt;
  const std::size_t next = skipBlanks(text_, sign + 1);
  const char c = text_[sign];
  if (c == spelling(MultiplicativeOp::divide)) return isDivisor(next) ? std::optional(next) : std::nullopt;
  const bool isSign = c == spelling(AdditiveOp::add) || c == spelling(AdditiveOp::subtract) ||
                      c == spelling(MultiplicativeOp::multiply);
  return isSign ? std::optional(next) : std::nullopt;
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
  const std::string_view rest = text_.substr(at);
  const std::size_t length = nameLength(rest);
  if (length == 0 || length == rest.size() || rest[length] != '(') return 0;
  const std::string_view name = rest.substr(0, length);
  const bool taken = isKeyword(name) || isConstant(name) || name.find("::") != std::string_view::npos;
  return taken ? 0 : length;
}

std::size_t Lookahead::behindBracket(std::size_t open) {
  if (behindBracket_.empty()) pairBrackets();
  return behindBracket_[open];
}

void Lookahead::pairBrackets() {
  behindBracket_.assign(text_.size(), kUnpaired);
  std::vector<std::size_t> open;
  for (std::size_t at = 0; at < text_.size();) {
    const char c = text_[at];
    if (c == '(') open.push_back(at);
    if (c == ')' && !open.empty()) {
      behindBracket_[open.back()] = at + 1;
      open.pop_back();
    }
    at = c == '"' ? behindString(text_, at) : at + 1;
  }
}

}  // namespace vell::outline_path

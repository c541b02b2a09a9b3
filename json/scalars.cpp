#include "json/scalars.h"

namespace vell::json {
namespace {

bool isDelimiter(char c) {
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

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Skips digits; false where there is none.
bool digits(std::string_view run, std::size_t& at) {
  const std::size_t start = at;
  while (at < run.size() && isDigit(run[at])) ++at;
  return at > start;
}

bool isNumber(std::string_view run) {
  std::size_t at = 0;
  const auto is = [&](char c) { return at < run.size() && run[at] == c; };
  if (is('-')) ++at;
  if (is('0')) {
    ++at;
  } else if (!digits(run, at)) {
    return false;
  }
  if (is('.') && (++at, !digits(run, at))) return false;
  if (is('e') || is('E')) {
    ++at;
    if (is('+') || is('-')) ++at;
    if (!digits(run, at)) return false;
  }
  return at == run.size();
}

}  // namespace

std::string_view scalarAt(std::string_view text, std::size_t offset, std::size_t limit) {
  std::size_t end = offset;
  while (end < limit && !isDelimiter(text[end])) ++end;
  return text.substr(offset, end - offset);
}

bool isScalar(std::string_view run) {
  return isNumber(run) || run == "true" || run == "false" || run == "null";
}

}  // namespace vell::json

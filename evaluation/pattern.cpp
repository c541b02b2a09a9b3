#include "evaluation/pattern.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <array>
#include <cstdint>

#include "evaluation/value.h"

namespace vell::evaluation {
namespace {

/// The library's own steps for one row's text; nested repetitions could otherwise go on for years. It does
/// not say how many it took, so a search is tried with few of them first.
constexpr std::uint32_t shortestSearch = 100, longestSearch = 100'000;

PCRE2_SPTR unitsOf(std::string_view text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

std::string inQuotes(std::string_view pattern) { return '"' + std::string(pattern) + '"'; }

pcre2_code* compile(std::string_view pattern, bool ignoreCase) {
  const std::uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | PCRE2_NEVER_BACKSLASH_C |
                                (ignoreCase ? PCRE2_CASELESS : 0);
  int error = 0;
  PCRE2_SIZE place = 0;
  pcre2_code* code = pcre2_compile(unitsOf(pattern), pattern.size(), options, &error, &place, nullptr);
  if (code != nullptr) return code;
  std::array<PCRE2_UCHAR, 120> reason{};
  pcre2_get_error_message(error, reason.data(), reason.size());
  throw EvaluationError(inQuotes(pattern) +
                        " is no valid pattern: " + reinterpret_cast<const char*>(reason.data()));
}

}  // namespace

struct Pattern::Compiled {
  Compiled(std::string_view pattern, bool ignoreCase)
      : text(pattern),
        code(compile(pattern, ignoreCase), pcre2_code_free),
        match(pcre2_match_data_create(1, nullptr), pcre2_match_data_free),
        limits(pcre2_match_context_create(nullptr), pcre2_match_context_free) {}

  int search(std::string_view in, std::uint32_t mostSteps) const {
    pcre2_set_match_limit(limits.get(), mostSteps);
    return pcre2_match(code.get(), unitsOf(in), in.size(), 0, 0, match.get(), limits.get());
  }

  template <typename T>
  using Held = std::unique_ptr<T, void (*)(T*)>;

  std::string text;
  Held<pcre2_code> code;
  Held<pcre2_match_data> match;
  Held<pcre2_match_context> limits;
};

Pattern::Pattern(std::string_view pattern, bool ignoreCase)
    : compiled_(std::make_shared<const Compiled>(pattern, ignoreCase)) {}

bool Pattern::isIn(std::string_view text, Work& work) const {
  // The library takes no null for an empty text.
  if (text.data() == nullptr) text = "";
  int result = PCRE2_ERROR_MATCHLIMIT;
  for (std::uint32_t steps = shortestSearch; steps <= longestSearch && result == PCRE2_ERROR_MATCHLIMIT;
       steps *= 10) {
    work.spend(steps / 4);
    result = compiled_->search(text, steps);
  }
  if (result < 0 && result != PCRE2_ERROR_NOMATCH) {
    throw EvaluationError(inQuotes(compiled_->text) + " takes too long to be searched for");
  }
  return result >= 0;
}

}  // namespace vell::evaluation

#pragma once

#include <gtest/gtest.h>

#include "outline_path/parse.h"

namespace vell::outline_path {

/// Parses `text`, as a value too, and checks that tracing changes nothing.
inline ParseResult parseBothWays(const std::string& text, bool allowValue = true) {
  ParseResult result = parse(text, {allowValue});
  const TracedParseResult traced = parseTraced(text, {allowValue});
  EXPECT_EQ(traced.expression, result.expression) << text;
  EXPECT_EQ(traced.error ? std::optional(traced.error->original) : std::nullopt, result.error) << text;
  return result;
}

}  // namespace vell::outline_path

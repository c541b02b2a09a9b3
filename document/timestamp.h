#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vell::document {

/// Milliseconds since 1970-01-01T00:00:00Z.
using Timestamp = std::int64_t;

Timestamp currentTime();

/// "2026-11-21T07:06:37Z", with ".123" before the "Z" where the milliseconds are not zero.
/// Times outside the years 0000 to 9999 are brought to the nearest end.
std::string formatTimestamp(Timestamp time);
void appendTimestamp(std::string& out, Timestamp time);

/// ISO 8601 with date and time; seconds and a fraction may be missing; the zone is "Z", "+hh:mm", "+hhmm" or
/// nothing (UTC). Digits beyond milliseconds are dropped.
std::optional<Timestamp> parseTimestamp(std::string_view text);

}  // namespace vell::document

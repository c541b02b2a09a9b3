#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace vell::text {

/// Insertions, deletions, substitutions and swaps of neighbours that turn one word into the other. The case
/// of ASCII letters does not count.
std::size_t editDistance(std::string_view from, std::string_view to);

/// The candidate that a misspelt or unfinished word most likely means; empty when none is near.
std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates);

}  // namespace vell::text

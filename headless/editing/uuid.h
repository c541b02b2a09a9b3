#pragma once

#include <string>

namespace vell::headless {

/// A new random identifier: 36 characters, upper-case hexadecimal with hyphens (RFC 4122, version 4).
std::string newUuid();

}  // namespace vell::headless

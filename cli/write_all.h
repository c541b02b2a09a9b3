#pragma once

#include <sys/types.h>

#include <string_view>

namespace vell::cli {

/// One write, waiting where the descriptor does not block; how many bytes went, or -1 with errno set.
ssize_t writeSome(int descriptor, std::string_view bytes);

/// Writes to the descriptor of standard output. Throws ClosedOutput when the reader is gone,
/// std::system_error when the bytes cannot be written.
void writeAll(int descriptor, std::string_view bytes);

}  // namespace vell::cli

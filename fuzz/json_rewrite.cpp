// Any bytes are refused or rewritten; what was written is taken again and stays as it is.

#include <cstdint>
#include <cstdlib>

#include "json/error.h"
#include "json/rewrite.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vell::json;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string compact;
  try {
    compact = rewrite(text, Layout::compact);
  } catch (const ParseError& error) {
    if (error.offset() > size) std::abort();
    return 0;
  }
  if (rewrite(rewrite(text, Layout::indented), Layout::compact) != compact) std::abort();
  return 0;
}

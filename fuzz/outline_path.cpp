// Parses whatever it is given, with and without a trace, and prints what was parsed.
#include <cstdlib>

#include "outline_path/highlight.h"
#include "outline_path/parse.h"
#include "outline_path/print.h"

using namespace vell::outline_path;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const OutlinePathWithParse path(text, {.allowValueExpression = true, .trace = true});
  static_cast<void>(path.debugDescription() + path.compactDescription());
  static_cast<void>(highlight(path));
  static_cast<void>(path.completion(size / 2, {}, {}));
  if (path.errorIndex) return 0;
  const ParseResult again = parse(print(*path.parsedExpression), {.allowValueExpression = true});
  if (again.error || again.expression != path.parsedExpression) std::abort();
  return 0;
}

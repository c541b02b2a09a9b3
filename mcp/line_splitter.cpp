#include "mcp/line_splitter.h"

namespace vell::mcp {

static void deliver(std::string_view line, const std::function<void(std::string_view)>& onMessage) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  if (!line.empty()) onMessage(line);
}

void LineSplitter::feed(std::string_view bytes, const std::function<void(std::string_view)>& onMessage) {
  for (;;) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos) break;
    if (pending_.empty()) {
      deliver(bytes.substr(0, end), onMessage);
    } else {
      std::string line = std::move(pending_);
      pending_.clear();
      deliver(line.append(bytes.substr(0, end)), onMessage);
    }
    bytes.remove_prefix(end + 1);
  }
  pending_.append(bytes);
}

}  // namespace vell::mcp

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mcp/argument_validator.h"
#include "mcp/change_notice.h"
#include "mcp/logger.h"
#include "mcp/tool.h"

namespace vell::mcp {

/// The findings about a tool's name; none for a good one.
std::vector<std::string> validateToolName(std::string_view name);

/// Logs them as one warning. They never keep a tool from being registered.
void validateAndWarnToolName(std::string_view name, const Logger& logger);

/// The tools in the order in which they were added.
class ToolRegistry {
 public:
  struct Entry {
    std::shared_ptr<Tool> tool;
    ArgumentValidator validator;
  };

  /// Replaces a tool of the same name.
  void add(const std::shared_ptr<Tool>& tool);
  /// False where no tool has that name.
  bool remove(std::string_view name);
  /// Valid until the next change.
  Entry* find(std::string_view name);
  Value list() const;
  bool empty() const { return entries_.empty(); }

  ChangeNotice& notice() { return notice_; }

 private:
  std::vector<Entry> entries_;
  ChangeNotice notice_;
};

}  // namespace vell::mcp

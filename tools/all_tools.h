#pragma once

#include <memory>

#include "mcp/mcp_server.h"
#include "tools/vell_close_outline.h"
#include "tools/vell_create_outline.h"
#include "tools/vell_create_row.h"
#include "tools/vell_create_rows.h"
#include "tools/vell_delete_rows.h"
#include "tools/vell_evaluate_commands.h"
#include "tools/vell_evaluate_script.h"
#include "tools/vell_get_commands.h"
#include "tools/vell_get_editor.h"
#include "tools/vell_get_editors.h"
#include "tools/vell_get_outline.h"
#include "tools/vell_get_outlines.h"
#include "tools/vell_move_rows.h"
#include "tools/vell_open_outline.h"
#include "tools/vell_outline_path_check.h"
#include "tools/vell_update_editor.h"
#include "tools/vell_update_rows.h"

namespace vell::tools {

template <class... Declarations>
void registerAll(mcp::MCPServer& server, const Services& services) {
  (server.registerTool(std::make_shared<DeclaredTool<Declarations>>(services)), ...);
}

/// Registers every tool, in the order in which they are listed.
inline void registerTools(mcp::MCPServer& server, const Services& services) {
  // clang-format off
  registerAll<
      VellOpenOutline,
      VellCreateOutline,
      VellCreateRow,
      VellCreateRows,
      VellGetCommands,
      VellGetEditor,
      VellGetEditors,
      VellGetOutline,
      VellGetOutlines,
      VellMoveRows,
      VellUpdateEditor,
      VellUpdateRows,
      VellDeleteRows,
      VellCloseOutline,
      VellEvaluateCommands,
      VellEvaluateScript,
      VellOutlinePathCheck
  >(server, services);
  // clang-format on
}

}  // namespace vell::tools

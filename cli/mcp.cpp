#include "cli/commands.h"
#include "cli/options.h"
#include "outlines/location.h"
#include "tools/serve.h"

namespace vell::cli {
namespace {

void serve(const Arguments&, Console& console) {
  console.sayToTypist("Serving an MCP host on standard input until end of file (Ctrl-D).\n");
  tools::serveMCP(outlines::cliVersion());
}

}  // namespace

const Command mcpCommand{
    .name = "mcp",
    .abstract = "MCP Server on stdio.",
    .options = {&prettyOption},
    .examples = {{"mcp", "What an MCP host is told to start; it ends with its standard input:"}},
    .run = serve};

}  // namespace vell::cli

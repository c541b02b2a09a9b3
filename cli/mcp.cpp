#include "cli/commands.h"
#include "cli/global_options.h"
#include "outlines/version.h"
#include "tools/serve.h"

namespace vell::cli {
namespace {

void serve(const Arguments&, Console&) { tools::serveMCP(outlines::cliVersion()); }

constexpr const Option* options[] = {&prettyOption};
constexpr Example examples[] = {
    {"mcp", "What an MCP host is told to start; it ends with its standard input:"},
};

}  // namespace

const Command mcpCommand{.name = "mcp",
                         .abstract = "MCP Server on stdio.",
                         .options = options,
                         .examples = examples,
                         .run = serve};

}  // namespace vell::cli

#include "headless/editing/problem.h"
#include "headless/server/methods.h"
#include "headless/server/request.h"
#include "headless/server/shapes.h"

namespace vell::headless::methods {
namespace {

std::string openOne(Application& application, const std::string& path) {
  try {
    return R"({"outline":)" + summary(application.open(path)) + R"(,"path":)" + quote(path) + "}";
  } catch (const Problem& problem) {
    return R"({"error":)" + quote(problem.what()) + R"(,"path":)" + quote(path) + "}";
  }
}

}  // namespace

std::string applicationOpen(const Call& call) {
  const auto paths = call.params.requiredStrings("paths");
  for (const std::string& path : paths)
    if (path.empty() || path.front() != '/') Params::fail("paths", "absolute paths", quote(path));
  std::string entries = "[";
  for (const std::string& path : paths) {
    if (entries.size() > 1) entries += ',';
    entries += openOne(call.application, path);
  }
  // The file named first ends up in front.
  for (auto path = paths.rbegin(); path != paths.rend(); ++path)
    if (const OpenOutline* opened = call.application.findByPath(*path))
      call.application.bringToFront(*opened);
  return entries + "]";
}

}  // namespace vell::headless::methods

#include "tools/outline_resources.h"

#include "tools/resources.h"

namespace vell::tools {

void OutlineResources::change(const std::vector<std::string>& removedURIs,
                              const std::vector<outlines::OutlineResource>& added) {
  const mcp::ChangeNotice::Batch batch(server_.resources().notice());
  for (const std::string& uri : removedURIs) server_.resources().remove(uri);
  for (const outlines::OutlineResource& outline : added) add(outline);
}

void OutlineResources::add(const outlines::OutlineResource& outline) {
  const std::string where = outline.path
                                ? "Open in Vell; saved at " + *outline.path
                                : "Open in Vell; not saved yet, persistent id " + outline.persistentId;
  const auto read = [services = services_, outline](const mcp::ResourceReadPtr& each) {
    outline.path ? readFile(services, *outline.path, each)
                 : readOpenOutline(services, outline.persistentId, each);
  };
  server_.registerResource(outline.uri,
                           {.name = outline.name, .description = where, .mimeType = markdownType}, read);
}

void OutlineResources::frontmostChanged() { server_.sendResourceUpdated(currentOutlineURI); }

}  // namespace vell::tools

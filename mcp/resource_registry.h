#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mcp/change_notice.h"
#include "mcp/resource.h"
#include "mcp/uri_template.h"

namespace vell::mcp {

/// The resources and resource templates in the order in which they were added.
class ResourceRegistry {
 public:
  /// Takes the place of a resource of the same URI.
  void add(std::string uri, ResourceDescription description, ResourceReader reader);
  void addTemplate(std::string uriTemplate, ResourceDescription description, ResourceReader reader);
  /// False where there is none of that URI.
  bool remove(std::string_view uri);

  /// The reader for a URI with the template's variables: the resource of that URI, else the first template
  /// that fits.
  std::optional<std::pair<ResourceReader, UriTemplate::Variables>> find(const std::string& uri) const;

  Value list() const;
  Value listTemplates() const;
  bool empty() const { return resources_.empty() && templates_.empty(); }

  ChangeNotice& notice() { return notice_; }

 private:
  struct Resource {
    std::string uri;
    ResourceDescription description;
    ResourceReader reader;
  };
  struct Template {
    UriTemplate uri;
    ResourceDescription description;
    ResourceReader reader;
  };

  std::vector<Resource> resources_;
  std::vector<Template> templates_;
  ChangeNotice notice_;
};

}  // namespace vell::mcp

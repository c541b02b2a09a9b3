#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mcp/change_notice.h"
#include "mcp/request_context.h"
#include "mcp/uri_template.h"
#include "mcp/value.h"

namespace vell::mcp {

/// How a resource or a template is listed.
struct ResourceDescription {
  std::string name;
  std::optional<std::string> title = {};
  std::optional<std::string> description = {};
  std::optional<std::string> mimeType = {};
};

/// One item of what a read returns.
struct ResourceContents {
  std::string uri;
  std::optional<std::string> mimeType = {};
  std::string text;
  bool isBlob = false;  // `text` holds raw bytes; they travel in base64

  Value toValue() &&;
};

/// One read of a resource, shared by all who work on it.
class ResourceRead {
 public:
  ResourceRead(std::string uri, UriTemplate::Variables variables, RequestContextPtr request)
      : uri_(std::move(uri)), variables_(std::move(variables)), request_(std::move(request)) {}

  const std::string& uri() const { return uri_; }
  std::optional<std::string> variable(const std::string& name) const;
  RequestContext& request() const { return *request_; }

  void answer(ResourceContents contents);
  /// The error names the URI and the description, and so does the log unless the read was cancelled.
  void fail(const std::string& description);

 private:
  std::string uri_;
  UriTemplate::Variables variables_;
  RequestContextPtr request_;
};

using ResourceReadPtr = std::shared_ptr<ResourceRead>;
/// Answers the read, now or later; an exception makes the read fail.
using ResourceReader = std::function<void(const ResourceReadPtr& read)>;

/// The resources and resource templates in the order in which they were added.
class ResourceRegistry {
 public:
  /// Replaces a resource of the same URI.
  void add(std::string uri, ResourceDescription description, ResourceReader reader);
  void addTemplate(std::string uriTemplate, ResourceDescription description, ResourceReader reader);
  /// False where no resource has that URI.
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

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

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

/// One read of a resource; whoever works on it holds it.
class ResourceRead {
 public:
  ResourceRead(std::string uri, UriTemplate::Variables variables, RequestContextPtr request)
      : uri_(std::move(uri)), variables_(std::move(variables)), request_(std::move(request)) {}

  const std::string& uri() const { return uri_; }
  std::optional<std::string> variable(const std::string& name) const;
  RequestContext& request() const { return *request_; }

  void answer(ResourceContents contents);
  /// The client learns the URI and the description.
  void fail(const std::string& description);

 private:
  std::string uri_;
  UriTemplate::Variables variables_;
  RequestContextPtr request_;
};

using ResourceReadPtr = std::shared_ptr<ResourceRead>;
/// Answers the read, now or later; what it throws fails it.
using ResourceReader = std::function<void(const ResourceReadPtr& read)>;

}  // namespace vell::mcp

#pragma once

#include <string>
#include <string_view>

#include "headless/server/params.h"

namespace vell::headless {

/// One request line, taken apart. Owns the text that `params` reads from.
class Request {
 public:
  /// Throws RpcError: parseError (the message has the byte offset), or invalidRequest where the line is no
  /// object.
  explicit Request(json::Text line);

  /// Throws RpcError(invalidRequest) where the request names no method or another protocol.
  std::string method() const;
  /// The id's JSON text as it came; "null" if it is missing, or neither a string nor a number.
  const std::string& id() const { return id_; }
  /// A request without an id wants no answer.
  bool wantsAnswer() const { return document_.root().find("id").has_value(); }
  /// Throws RpcError(invalidParams) where params is not an object.
  Params params() const;

 private:
  json::Document document_;
  std::string id_;
};

// Whole lines with their line feed; `id` and `result` are JSON texts.

std::string resultLine(std::string_view id, std::string_view result);
std::string errorLine(std::string_view id, RpcCode code, std::string_view message);

}  // namespace vell::headless

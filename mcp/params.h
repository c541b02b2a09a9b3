#pragma once

#include <optional>
#include <string>

#include "mcp/mcp_error.h"
#include "mcp/value.h"

namespace vell::mcp {

/// Reads a method's params. Throws MCPError::invalidParams for params that do not fit.
class Params {
 public:
  enum class Presence { required, optional };

  Params(const std::optional<Value>& params, Presence presence) {
    const bool absent = !params || params->isNull();
    if (absent && presence == Presence::required)
      throw MCPError::invalidParams("Missing required params field");
    if (!absent && !params->object()) throw invalid();
    object_ = absent ? nullptr : &*params;
  }

  std::string text(const char* key) const {
    if (auto text = optionalText(key)) return std::move(*text);
    throw invalid();
  }

  std::optional<std::string> optionalText(const char* key) const {
    const Value* value = find(key);
    if (!value || value->isNull()) return std::nullopt;
    if (!value->string()) throw invalid();
    return *value->string();
  }

  /// An object's copy; empty where absent or null.
  Value::Object optionalObject(const char* key) const {
    const Value* value = find(key);
    if (!value || value->isNull()) return {};
    if (!value->object()) throw invalid();
    return *value->object();
  }

 private:
  static MCPError invalid() { return MCPError::invalidParams("Invalid params field"); }
  const Value* find(const char* key) const { return object_ ? object_->find(key) : nullptr; }

  const Value* object_;
};

}  // namespace vell::mcp

#pragma once

#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/document.h"

namespace vell::headless {

/// The codes that JSON-RPC 2.0 reserves.
enum class RpcCode : int {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
  /// The application understood the request and cannot do it.
  application = -32000,
};

/// A request's failure as its sender sees it.
class RpcError : public std::runtime_error {
 public:
  RpcError(RpcCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  RpcCode code() const { return code_; }

 private:
  RpcCode code_;
};

/// The params object of one request, read member by member. A member that is null counts as absent; members
/// that no method asks for are ignored. A value that does not fit throws RpcError(invalidParams) with the
/// member, what was expected and what came. Valid while the request's document lives.
class Params {
 public:
  template <typename Value>
  using Choices = std::initializer_list<std::pair<std::string_view, Value>>;

  /// `params` may be missing or null; anything but an object throws.
  explicit Params(std::optional<json::Node> params);

  std::optional<std::string> string(std::string_view key) const;
  std::string requiredString(std::string_view key) const;
  /// A string that is not empty; `expected` is what messages call it.
  std::optional<std::string> nonEmpty(std::string_view key, const char* expected) const;
  bool flag(std::string_view key, bool fallback) const;
  /// Empty where the member is absent.
  std::vector<std::string> strings(std::string_view key) const;
  std::vector<std::string> requiredStrings(std::string_view key) const;
  /// A string, or an integer as its decimal digits.
  std::optional<std::string> stringOrInteger(std::string_view key) const;
  /// The member itself, for methods that decode it themselves.
  std::optional<json::Node> member(std::string_view key) const;

  /// Whether a string among them may be an outline path.
  bool mentionPath() const;

  template <typename Value>
  Value choice(std::string_view key, Choices<Value> choices, Value fallback) const {
    const auto text = string(key);
    if (!text) return fallback;
    std::string names;
    for (const auto& [name, value] : choices) {
      if (name == *text) return value;
      names.append(names.empty() ? "\"" : ", \"").append(name).append("\"");
    }
    fail(key, "one of " + names, "\"" + *text + "\"");
  }

  [[noreturn]] static void fail(std::string_view key, const std::string& expected, const std::string& got);

 private:
  std::optional<json::Node> params_;
};

/// "a boolean", `the number 12`, `the string "x"`: how a message names a value that does not fit.
std::string describe(const json::Node& value);

}  // namespace vell::headless

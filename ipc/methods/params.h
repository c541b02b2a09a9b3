#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vell::ipc {

/// An argument that cannot be sent; `what()` names it.
class ParamsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Puts a params object together: what is absent is left out, keys come out sorted.
/// Throws ParamsError for text that is not valid UTF-8.
class ParamsWriter {
 public:
  using Attributes = std::map<std::string, std::optional<std::string>>;

  ParamsWriter& add(const std::string& key, const std::string& value);
  ParamsWriter& add(const std::string& key, const char* value) = delete;
  ParamsWriter& add(const std::string& key, bool value);
  ParamsWriter& add(const std::string& key, const std::vector<std::string>& values);
  /// An object of strings; one without a value becomes null.
  ParamsWriter& add(const std::string& key, const Attributes& attributes);
  /// JSON text, taken as it stands.
  ParamsWriter& addJson(const std::string& key, std::string json);

  template <class Value>
  ParamsWriter& add(const std::string& key, const std::optional<Value>& value) {
    return value ? add(key, *value) : *this;
  }

  /// The object as compact JSON text.
  std::string json() const;

 private:
  std::map<std::string, std::string> members_;
};

}  // namespace vell::ipc

#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <string>

namespace vell::headless {

/// A JavaScript string that releases itself.
class JsText {
 public:
  /// The text up to its first NUL; JSON texts, the only ones that pass through here, hold none.
  explicit JsText(const std::string& utf8);
  /// Takes over a string that the caller owns; may be null.
  explicit JsText(JSStringRef owned) : string_(owned) {}
  ~JsText();
  JsText(const JsText&) = delete;
  JsText& operator=(const JsText&) = delete;

  JSStringRef get() const { return string_; }
  explicit operator bool() const { return string_ != nullptr; }
  /// UTF-8; empty when null.
  std::string utf8() const;

 private:
  JSStringRef string_;
};

/// The value as text, as `String(value)` gives it; empty where that throws.
std::string textOf(JSContextRef context, JSValueRef value);
/// A property of an object as text; empty where it is absent, undefined or null.
std::string propertyText(JSContextRef context, JSObjectRef object, const char* name);

}  // namespace vell::headless

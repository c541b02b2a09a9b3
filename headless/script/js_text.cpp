#include "headless/script/js_text.h"

namespace vell::headless {

JsText::JsText(const std::string& utf8) : string_(JSStringCreateWithUTF8CString(utf8.c_str())) {}

JsText::~JsText() {
  if (string_ != nullptr) JSStringRelease(string_);
}

std::string JsText::utf8() const {
  if (string_ == nullptr) return {};
  std::string text(JSStringGetMaximumUTF8CStringSize(string_), '\0');
  const std::size_t written = JSStringGetUTF8CString(string_, text.data(), text.size());
  text.resize(written == 0 ? 0 : written - 1);
  return text;
}

std::string textOf(JSContextRef context, JSValueRef value) {
  return JsText(JSValueToStringCopy(context, value, nullptr)).utf8();
}

std::string propertyText(JSContextRef context, JSObjectRef object, const char* name) {
  const JsText key{std::string(name)};
  JSValueRef value = JSObjectGetProperty(context, object, key.get(), nullptr);
  if (value == nullptr || JSValueIsUndefined(context, value) || JSValueIsNull(context, value)) return {};
  return textOf(context, value);
}

}  // namespace vell::headless

#include "headless/script/script_engine.h"

#include <JavaScriptCore/JavaScript.h>

namespace vell::headless {

/// The text of prelude.js, which builds the `vell` global.
extern const char* const preludeSource;

namespace {

/// A JavaScript string that releases itself.
class JsText {
 public:
  /// The text up to its first NUL; JSON texts, the only ones that pass through here, hold none.
  explicit JsText(const std::string& utf8) : string_(JSStringCreateWithUTF8CString(utf8.c_str())) {}
  /// Takes over a string that the caller owns; may be null.
  explicit JsText(JSStringRef owned) : string_(owned) {}
  ~JsText() {
    if (string_ != nullptr) JSStringRelease(string_);
  }
  JsText(const JsText&) = delete;
  JsText& operator=(const JsText&) = delete;

  JSStringRef get() const { return string_; }
  /// UTF-8; empty when null.
  std::string utf8() const {
    if (string_ == nullptr) return {};
    std::string text(JSStringGetMaximumUTF8CStringSize(string_), '\0');
    const std::size_t written = JSStringGetUTF8CString(string_, text.data(), text.size());
    text.resize(written == 0 ? 0 : written - 1);
    return text;
  }

 private:
  JSStringRef string_;
};

/// The value as text, as `String(value)` gives it; empty where that throws.
std::string textOf(JSContextRef context, JSValueRef value) {
  return JsText(JSValueToStringCopy(context, value, nullptr)).utf8();
}

/// A property of an object as text; empty where it is absent, undefined or null.
std::string propertyText(JSContextRef context, JSObjectRef object, const char* name) {
  const JsText key{std::string(name)};
  JSValueRef value = JSObjectGetProperty(context, object, key.get(), nullptr);
  if (value == nullptr || JSValueIsUndefined(context, value) || JSValueIsNull(context, value)) return {};
  return textOf(context, value);
}

/// A JavaScript context.
class Context {
 public:
  Context() : context_(JSGlobalContextCreate(nullptr)) {}
  ~Context() { JSGlobalContextRelease(context_); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  JSGlobalContextRef get() const { return context_; }

 private:
  JSGlobalContextRef context_;
};

constexpr const char* scriptName = "script";

/// The line of the script at which an error arose, also where it arose in a function of ours that the script
/// called.
std::string lineOf(JSContextRef context, JSObjectRef error) {
  if (propertyText(context, error, "sourceURL") == scriptName) return propertyText(context, error, "line");
  const std::string stack = propertyText(context, error, "stack");
  const std::string mark = std::string("@") + scriptName + ":";
  const std::size_t found = stack.find(mark);
  if (found == std::string::npos) return {};
  const std::size_t start = found + mark.size();
  return stack.substr(start, stack.find(':', start) - start);
}

/// "ReferenceError: Can't find variable: x (line 3)", the stack left out.
std::string describe(JSContextRef context, JSValueRef exception) {
  std::string text = textOf(context, exception);
  if (!JSValueIsObject(context, exception)) return "Uncaught " + text;
  JSObjectRef object = JSValueToObject(context, exception, nullptr);
  if (text == "[object Object]") {
    text = JsText(JSValueCreateJSONString(context, exception, 0, nullptr)).utf8();
  }
  const std::string line = lineOf(context, object);
  return line.empty() ? text : text + " (line " + line + ")";
}

void throwOn(JSContextRef context, JSValueRef exception) {
  if (exception != nullptr) throw ScriptError(describe(context, exception));
}

JSValueRef evaluate(JSContextRef context, const std::string& source, const char* name) {
  JSValueRef exception = nullptr;
  JSValueRef value = JSEvaluateScript(context, JsText(source).get(), nullptr, JsText(std::string(name)).get(),
                                      1, &exception);
  throwOn(context, exception);
  return value;
}

JSValueRef callFunction(JSContextRef context, JSValueRef function,
                        std::initializer_list<JSValueRef> arguments) {
  JSValueRef exception = nullptr;
  JSObjectRef object = JSValueToObject(context, function, &exception);
  throwOn(context, exception);
  JSValueRef value =
      JSObjectCallAsFunction(context, object, nullptr, arguments.size(), arguments.begin(), &exception);
  throwOn(context, exception);
  return value;
}

JSValueRef makeString(JSContextRef context, const std::string& text) {
  return JSValueMakeString(context, JsText(text).get());
}

/// Functions of ours that JavaScript may call: a class whose instances carry the host.
using Native = JSValueRef (*)(JSContextRef, ScriptHost&, std::size_t, const JSValueRef*);

template <Native native>
JSValueRef enter(JSContextRef context, JSObjectRef function, JSObjectRef, std::size_t count,
                 const JSValueRef* arguments, JSValueRef* exception) {
  try {
    return native(context, *static_cast<ScriptHost*>(JSObjectGetPrivate(function)), count, arguments);
  } catch (const std::exception& error) {
    JSValueRef message = makeString(context, error.what());
    *exception = JSObjectMakeError(context, 1, &message, nullptr);
    return JSValueMakeUndefined(context);
  }
}

template <Native native>
JSValueRef makeFunction(JSContextRef context, ScriptHost& host) {
  JSClassDefinition definition = kJSClassDefinitionEmpty;
  definition.callAsFunction = enter<native>;
  JSClassRef functionClass = JSClassCreate(&definition);
  JSObjectRef function = JSObjectMake(context, functionClass, &host);
  JSClassRelease(functionClass);
  return function;
}

JSValueRef callHost(JSContextRef context, ScriptHost& host, std::size_t count, const JSValueRef* arguments) {
  if (count != 2) throw ScriptError("a method name and its parameters are needed");
  return makeString(context, host.call(textOf(context, arguments[0]), textOf(context, arguments[1])));
}

JSValueRef logLine(JSContextRef context, ScriptHost& host, std::size_t count, const JSValueRef* arguments) {
  std::string line;
  for (std::size_t i = 0; i < count; ++i) line += (i == 0 ? "" : " ") + textOf(context, arguments[i]);
  host.log(line);
  return JSValueMakeUndefined(context);
}

void setProperty(JSContextRef context, JSObjectRef object, const char* name, JSValueRef value) {
  JSObjectSetProperty(context, object, JsText(std::string(name)).get(), value, kJSPropertyAttributeNone,
                      nullptr);
}

void installGlobals(JSContextRef context, const std::string& version, ScriptHost& host) {
  JSObjectRef global = JSContextGetGlobalObject(context);
  JSValueRef build = evaluate(context, preludeSource, "vell");
  JSValueRef native = makeFunction<callHost>(context, host);
  setProperty(context, global, "vell", callFunction(context, build, {native, makeString(context, version)}));

  JSObjectRef console = JSObjectMake(context, nullptr, nullptr);
  for (const char* name : {"log", "info", "warn", "error"}) {
    setProperty(context, console, name, makeFunction<logLine>(context, host));
  }
  setProperty(context, global, "console", console);
}

bool isFunction(JSContextRef context, JSValueRef value) {
  return JSValueIsObject(context, value) &&
         JSObjectIsFunction(context, JSValueToObject(context, value, nullptr));
}

/// What a promise settled to; other values as they are. The engine has run everything that was waiting by the
/// time the call returns, and nothing else can settle a promise: there are no timers.
JSValueRef awaited(JSContextRef context, JSValueRef value) {
  JSValueRef observe = evaluate(context, R"((value) => {
      if (!(value instanceof Promise)) return { value, settled: true };
      const state = { settled: false };
      value.then((result) => Object.assign(state, { value: result, settled: true }),
                 (error) => Object.assign(state, { error, failed: true, settled: true }));
      return state;
    })",
                                "vell");
  JSValueRef state = callFunction(context, observe, {value});
  const auto property = [&](const char* name) {
    JSObjectRef object = JSValueToObject(context, state, nullptr);
    return JSObjectGetProperty(context, object, JsText(std::string(name)).get(), nullptr);
  };
  if (!JSValueToBoolean(context, property("settled")))
    throw ScriptError("The script's promise never settled.");
  if (JSValueToBoolean(context, property("failed"))) throw ScriptError(describe(context, property("error")));
  return property("value");
}

std::string jsonOf(JSContextRef context, JSValueRef value) {
  JSValueRef exception = nullptr;
  const JsText text(JSValueCreateJSONString(context, value, 0, &exception));
  throwOn(context, exception);
  return text.get() != nullptr ? text.utf8() : "null";
}

}  // namespace

std::string evaluateScript(const Script& script, const std::string& version, ScriptHost& host) {
  if (script.source.find('\0') != std::string::npos) throw ScriptError("The script holds a NUL character.");
  const Context owner;
  JSContextRef context = owner.get();
  installGlobals(context, version, host);
  JSValueRef value = evaluate(context, script.source, scriptName);
  if (isFunction(context, value)) {
    value = script.input ? callFunction(context, value, {makeString(context, *script.input)})
                         : callFunction(context, value, {});
  }
  return jsonOf(context, awaited(context, value));
}

}  // namespace vell::headless

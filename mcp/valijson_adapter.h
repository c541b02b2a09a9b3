#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <valijson/internal/adapter.hpp>
#include <valijson/internal/basic_adapter.hpp>
#include <valijson/internal/frozen_value.hpp>

#include "mcp/value.h"

/// The types through which valijson reads values; the library sets their shape.
namespace vell::mcp::adapters {

class Adapter;
using Member = std::pair<std::string, Adapter>;

/// Walks over a container of values and yields an Adapter or a Member for each.
template <class Inner, class Element>
class Iterator {
 public:
  explicit Iterator(Inner at) : at_(at) {}

  Element operator*() const { return Element(*at_); }
  valijson::adapters::DerefProxy<Element> operator->() const {
    return valijson::adapters::DerefProxy<Element>(**this);
  }
  Iterator& operator++() {
    ++at_;
    return *this;
  }
  Iterator operator++(int) { return Iterator(at_++); }
  Iterator& operator--() {
    --at_;
    return *this;
  }
  void advance(std::ptrdiff_t count) { std::advance(at_, count); }
  bool operator==(const Iterator&) const = default;

 private:
  Inner at_;
};

/// An array or an object.
template <class Container, class Element>
class View {
 public:
  using const_iterator = Iterator<typename Container::const_iterator, Element>;

  View() : View(empty()) {}
  explicit View(const Container& content) : content_(&content) {}

  const_iterator begin() const { return const_iterator(content_->begin()); }
  const_iterator end() const { return const_iterator(content_->end()); }
  const_iterator find(const std::string& key) const { return const_iterator(content_->find(key)); }
  std::size_t size() const { return content_->size(); }

 private:
  static const Container& empty() {
    static const Container none;
    return none;
  }

  const Container* content_;
};

using Array = View<Value::Array, Adapter>;
using Object = View<Value::Object, Member>;

/// A value as BasicAdapter asks for it. Whole numbers such as 1.0 are integers to JSON Schema.
class Content {
 public:
  explicit Content(const Value& value) : value_(&value) {}

  static bool hasStrictTypes() { return true; }
  bool isArray() const { return value_->array(); }
  bool isBool() const { return value_->boolean(); }
  bool isDouble() const { return value_->number() && !isInteger(); }
  bool isInteger() const { return value_->asInteger().has_value(); }
  bool isNull() const { return value_->isNull(); }
  bool isNumber() const { return isInteger() || isDouble(); }
  bool isObject() const { return value_->object(); }
  bool isString() const { return value_->string(); }

  bool getBool(bool& result) const { return get(value_->boolean(), result); }
  bool getDouble(double& result) const { return get(value_->number(), result); }
  bool getInteger(std::int64_t& result) const { return get(value_->asInteger(), result); }
  bool getString(std::string& result) const { return get(value_->string(), result); }
  bool getArraySize(std::size_t& result) const { return getSize(value_->array(), result); }
  bool getObjectSize(std::size_t& result) const { return getSize(value_->object(), result); }
  std::optional<Array> getArrayOptional() const { return view<Array>(value_->array()); }
  std::optional<Object> getObjectOptional() const { return view<Object>(value_->object()); }
  valijson::adapters::FrozenValue* freeze() const;

 private:
  template <class Source, class Result>
  static bool get(const Source& source, Result& result) {
    if (source) result = *source;
    return static_cast<bool>(source);
  }
  template <class Container>
  static bool getSize(const Container* container, std::size_t& result) {
    if (container) result = container->size();
    return container != nullptr;
  }
  template <class View, class Container>
  static std::optional<View> view(const Container* container) {
    return container ? std::optional<View>(View(*container)) : std::optional<View>();
  }

  const Value* value_;
};

class Adapter : public valijson::adapters::BasicAdapter<Adapter, Array, Member, Object, Content> {
 public:
  explicit Adapter(const Value& value) : BasicAdapter(Content(value)) {}
};

/// A copy that outlives what it was read from.
class FrozenValue : public valijson::adapters::FrozenValue {
 public:
  explicit FrozenValue(Value value) : value_(std::move(value)) {}
  valijson::adapters::FrozenValue* clone() const override { return new FrozenValue(value_); }
  bool equalTo(const valijson::adapters::Adapter& other, bool strict) const override {
    return Adapter(value_).equalTo(other, strict);
  }

 private:
  Value value_;
};

inline valijson::adapters::FrozenValue* Content::freeze() const { return new FrozenValue(*value_); }

}  // namespace vell::mcp::adapters

template <>
struct valijson::adapters::AdapterTraits<vell::mcp::adapters::Adapter> {
  using DocumentType = vell::mcp::Value;
};

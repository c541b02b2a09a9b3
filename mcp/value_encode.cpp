#include "json/writer.h"
#include "mcp/value.h"

namespace vell::mcp {

namespace {

struct Encoder {
  json::Writer& writer;

  template <class Scalar>
  void operator()(const Scalar& value) {
    writer.value(value);
  }

  void operator()(const Data& value) {
    writer.value("data:" + value.mimeType.value_or("text/plain") + ";base64," + base64(value.bytes));
  }

  void operator()(const Value::Array& value) {
    writer.beginArray();
    for (const Value& element : value) element.visit(*this);
    writer.endArray();
  }

  void operator()(const Value::Object& value) {
    writer.beginObject();
    for (const auto& [key, member] : value) {
      writer.key(key);
      member.visit(*this);
    }
    writer.endObject();
  }
};

}  // namespace

void encode(const Value& value, std::string& out) {
  json::Writer writer(out);
  value.visit(Encoder{writer});
}

std::string encode(const Value& value) {
  std::string out;
  encode(value, out);
  return out;
}

}  // namespace vell::mcp

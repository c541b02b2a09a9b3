#include "mcp/argument_validator.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace vell::mcp {

namespace {

using nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

bool isWhole(double number) { return std::trunc(number) == number && std::fabs(number) < 9.0e15; }

/// The value for the validator. A number such as 1.0 is an integer to JSON Schema, but not to the validator.
struct Converter {
  json operator()(std::nullptr_t) const { return nullptr; }
  json operator()(bool value) const { return value; }
  json operator()(std::int64_t value) const { return value; }
  json operator()(double value) const {
    return isWhole(value) ? json(static_cast<std::int64_t>(value)) : json(value);
  }
  json operator()(const std::string& value) const { return value; }
  json operator()(const Data& value) const { return json::parse(encode(Value(value))); }
  json operator()(const Value::Array& value) const {
    json array = json::array();
    for (const Value& element : value) array.push_back(element.visit(*this));
    return array;
  }
  json operator()(const Value::Object& value) const {
    json object = json::object();
    for (const auto& [key, member] : value) object.emplace(key, member.visit(*this));
    return object;
  }
};

std::string firstError(valijson::ValidationResults& results) {
  valijson::ValidationResults::Error error;
  if (!results.popError(error)) return "The arguments do not fit the input schema.";
  std::string place;
  for (const std::string& step : error.context) place += step;
  return place + ": " + error.description;
}

}  // namespace

struct ArgumentValidator::Compiled {
  valijson::Schema schema;
};

ArgumentValidator::ArgumentValidator(Value schema) : schema_(std::move(schema)) {}
ArgumentValidator::~ArgumentValidator() = default;
ArgumentValidator::ArgumentValidator(ArgumentValidator&&) noexcept = default;
ArgumentValidator& ArgumentValidator::operator=(ArgumentValidator&&) noexcept = default;

std::string ArgumentValidator::faults(const Value& arguments) {
  if (!compiled_) {
    const json schema = schema_.visit(Converter{});
    compiled_ = std::make_unique<Compiled>();
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(Adapter(schema), compiled_->schema);
  }
  const json target = arguments.visit(Converter{});
  valijson::ValidationResults results;
  if (valijson::Validator().validate(compiled_->schema, Adapter(target), &results)) return {};
  const std::string explained = explainFaults(schema_, arguments);
  return explained.empty() ? firstError(results) : explained;
}

}  // namespace vell::mcp

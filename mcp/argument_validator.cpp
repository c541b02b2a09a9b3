#include "mcp/argument_validator.h"

#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "mcp/valijson_adapter.h"

namespace vell::mcp {

struct ArgumentValidator::Compiled {
  valijson::Schema schema;
};

ArgumentValidator::ArgumentValidator(Value schema) : schema_(std::move(schema)) {}
ArgumentValidator::~ArgumentValidator() = default;
ArgumentValidator::ArgumentValidator(ArgumentValidator&&) noexcept = default;
ArgumentValidator& ArgumentValidator::operator=(ArgumentValidator&&) noexcept = default;

std::string ArgumentValidator::faults(const Value& arguments) {
  if (!compiled_) {
    compiled_ = std::make_unique<Compiled>();
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(adapters::Adapter(schema_), compiled_->schema);
  }
  if (valijson::Validator().validate(compiled_->schema, adapters::Adapter(arguments), nullptr)) return {};
  const std::string explained = explainFaults(schema_, arguments);
  return explained.empty() ? "The arguments do not fit the input schema." : explained;
}

}  // namespace vell::mcp

#pragma once

#include <memory>
#include <string>

#include "mcp/value.h"

namespace vell::mcp {

/// Checks a tool's arguments against its input schema.
class ArgumentValidator {
 public:
  /// The schema is read when first needed.
  explicit ArgumentValidator(Value schema);
  ~ArgumentValidator();
  ArgumentValidator(ArgumentValidator&&) noexcept;
  ArgumentValidator& operator=(ArgumentValidator&&) noexcept;

  /// Every fault with its place, what was expected and what was there, one a line; empty where all is well.
  std::string faults(const Value& arguments);

 private:
  struct Compiled;

  Value schema_;
  std::unique_ptr<Compiled> compiled_;
};

/// Describes what is wrong with arguments that do not fit an object schema, one fault a line: its place, what
/// was expected, what was there, what to write instead. Empty where there is no fault.
/// Knows the keywords of schema.h.
std::string explainFaults(const Value& schema, const Value& arguments);

}  // namespace vell::mcp

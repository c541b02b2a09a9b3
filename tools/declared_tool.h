#pragma once

#include "mcp/parameters.h"
#include "mcp/tool.h"
#include "tools/calls.h"

namespace vell::tools {

/// What a tool does to the world, for hosts that ask before they let it.
struct Hints {
  bool readOnly = false;
  bool destructive = false;
  bool idempotent = false;
  bool openWorld = false;
};

/// A tool made of its declaration, a type with
///   Record          what the arguments fill: the params record of the method that the tool calls
///   name, title, description, hints
///   parameters()    the declaration of each argument
/// and, where there is more to it than sending the record,
///   perform(const Record&, const Services&, const mcp::ToolCallPtr&)   answers the call; may throw
template <class Declaration>
class DeclaredTool : public mcp::Tool {
 public:
  using Record = typename Declaration::Record;

  explicit DeclaredTool(const Services& services)
      : services_(services), parameters_(Declaration::parameters()) {
    definition_.name = Declaration::name;
    definition_.title = Declaration::title;
    definition_.description = Declaration::description;
    definition_.inputSchema = parameters_.schema();
    definition_.annotations = mcp::ToolAnnotations{.title = Declaration::title,
                                                   .readOnlyHint = Declaration::hints.readOnly,
                                                   .destructiveHint = Declaration::hints.destructive,
                                                   .idempotentHint = Declaration::hints.idempotent,
                                                   .openWorldHint = Declaration::hints.openWorld};
  }

  const mcp::ToolDefinition& definition() const override { return definition_; }

  void call(const mcp::Value::Object& arguments, const mcp::ToolCallPtr& call) override {
    const Record record = parameters_.decode(arguments);
    if constexpr (requires { Declaration::perform(record, services_, call); }) {
      Declaration::perform(record, services_, call);
    } else {
      forward(services_, record, call);
    }
  }

 private:
  Services services_;
  mcp::Parameters<Record> parameters_;
  mcp::ToolDefinition definition_;
};

}  // namespace vell::tools

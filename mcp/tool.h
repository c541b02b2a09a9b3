#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mcp/request_context.h"
#include "mcp/value.h"

namespace vell::mcp {

/// Hints for the host; what is absent is not written.
struct ToolAnnotations {
  std::optional<std::string> title = {};
  std::optional<bool> readOnlyHint = {};
  std::optional<bool> destructiveHint = {};
  std::optional<bool> idempotentHint = {};
  std::optional<bool> openWorldHint = {};

  Value toValue() const;
};

/// Whether a call of a tool may, must or must not run as a task.
enum class TaskSupport { required, optional, forbidden };

/// How a tool is listed.
struct ToolDefinition {
  std::string name;
  std::optional<std::string> title = {};
  std::optional<std::string> description = {};
  Value inputSchema;                       // an object schema
  std::optional<Value> outputSchema = {};  // of the structured content
  std::optional<Value::Object> meta = {};  // written as `_meta`
  std::optional<Value::Array> icons = {};
  std::optional<TaskSupport> taskSupport = {};  // written in `execution`
  std::optional<ToolAnnotations> annotations = {};

  Value toValue() const;
};

/// Content blocks, tagged by `type`.
namespace content {

Value text(std::string text);
/// `data` holds raw bytes; they travel in base64.
Value image(const std::string& data, const std::string& mimeType);
Value audio(const std::string& data, const std::string& mimeType);
Value resource(Value contents);
Value resourceLink(Value::Object reference);

/// Throws std::invalid_argument for a block of another type.
void check(const Value& block);

}  // namespace content

/// The result of a call; also of a failed one, with a text that the model can read.
struct CallToolResult {
  std::vector<Value> content;  // content blocks
  std::optional<Value> structuredContent = {};
  bool isError = false;
  std::optional<Value::Object> meta = {};  // written as `_meta`

  static CallToolResult text(std::string text);
  static CallToolResult error(std::string description);
  Value toValue() &&;
};

class Tool;

/// One call of a tool, shared by all who work on it. It keeps the tool alive.
class ToolCall {
 public:
  ToolCall(std::shared_ptr<Tool> tool, RequestContextPtr request)
      : tool_(std::move(tool)), request_(std::move(request)) {}

  Tool& tool() const { return *tool_; }
  RequestContext& request() const { return *request_; }
  /// Answers with the result; an output schema without structured content fails the request instead.
  void answer(CallToolResult result);
  void answerText(std::string text) { answer(CallToolResult::text(std::move(text))); }
  void fail(std::string description) { answer(CallToolResult::error(std::move(description))); }

 private:
  std::shared_ptr<Tool> tool_;
  RequestContextPtr request_;
};

using ToolCallPtr = std::shared_ptr<ToolCall>;

class Tool {
 public:
  virtual ~Tool() = default;
  virtual const ToolDefinition& definition() const = 0;
  /// Answers the call, now or later. The arguments satisfy the input schema and hold no null at the top.
  /// An exception becomes a result with `isError` and its text.
  virtual void call(const Value::Object& arguments, const ToolCallPtr& call) = 0;
};

}  // namespace vell::mcp

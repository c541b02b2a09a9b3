#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "json/document.h"
#include "json/text.h"

namespace vell::ipc {

/// One request as it is sent, its line feed included. `params` is JSON text; empty sends none.
std::string requestLine(std::int64_t id, std::string_view method, std::string_view params);

/// The message on a line from the application; null where the line is blank. Throws json::ParseError.
std::unique_ptr<json::Document> parseMessage(json::Text line);

/// Throws ClientError::rpcError where the message, an object, has an error object.
void throwIfError(const json::Document& message);

}  // namespace vell::ipc

#include "ipc/vell_ipc.h"

#include "json/rewrite.h"

namespace vell::ipc {

Answer VellIPC::request(std::string_view method, const std::string& params) {
  const std::lock_guard<std::mutex> turn(turn_);
  try {
    return client_.request(method, params);
  } catch (const ClientError& error) {
    throw VellIPCError(error);
  }
}

std::string VellIPC::call(std::string_view method, const std::optional<std::string>& paramsJSON) {
  const std::string params = paramsJSON ? json::rewrite(*paramsJSON, json::Layout::compact) : std::string();
  return request(method, params).bytes();
}

}  // namespace vell::ipc

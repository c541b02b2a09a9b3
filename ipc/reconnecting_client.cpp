#include "ipc/reconnecting_client.h"

namespace vell::ipc {

Answer ReconnectingClient::request(std::string_view method, const std::string& params) {
  try {
    if (!client_) client_.emplace();
    return client_->request(method, params);
  } catch (const ClientError& error) {
    if (error.endsConnection()) client_.reset();
    throw;
  }
}

}  // namespace vell::ipc

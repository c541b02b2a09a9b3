#pragma once

#include <optional>

#include "ipc/vell_client.h"

namespace vell::ipc {

/// A connection made when first needed and made anew after a transport failure, so that it survives the
/// application's coming and going. Nothing is retried: the call that met the failure throws it.
class ReconnectingClient : public Application {
 public:
  using Application::request;
  /// Throws what VellClient throws.
  Answer request(std::string_view method, const std::string& params) override;

 private:
  std::optional<VellClient> client_;
};

}  // namespace vell::ipc

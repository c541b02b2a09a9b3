#pragma once

#include <string>
#include <string_view>

#include "ipc/message.h"

namespace vell::ipc {

/// Something that can call the application: a connection with one user, or the shared one of `vell mcp`.
class Application {
 public:
  virtual ~Application() = default;

  /// Sends one request and waits for its answer, however long it takes. `params` is JSON text; empty
  /// sends none. Throws ClientError, and json::ParseError where the application sends what is not JSON.
  virtual Answer request(std::string_view method, const std::string& params) = 0;

  /// The same for one of the records of ipc/methods.h.
  template <class Record>
  Answer request(const Record& record) {
    return request(Record::method, record.toJson());
  }
};

}  // namespace vell::ipc

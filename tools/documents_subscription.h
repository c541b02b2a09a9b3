#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <string>

#include "outlines/tracking.h"
#include "tools/application_connection.h"

namespace vell::tools {

/// Follows which outlines are open in the application and keeps a board equal to them, on a connection of its
/// own. While the application is away nothing is open, and it asks again and again, ever more slowly.
class DocumentsSubscription {
 public:
  /// The board must outlive the subscription.
  DocumentsSubscription(asio::io_context& loop, std::string socketPath, outlines::OutlineBoard& board);
  ~DocumentsSubscription() { stop(); }
  DocumentsSubscription(const DocumentsSubscription&) = delete;
  DocumentsSubscription& operator=(const DocumentsSubscription&) = delete;

  void start();
  void stop();

 private:
  void onLine(json::Text line);
  void onEnd();

  asio::io_context& loop_;
  std::string socketPath_;
  outlines::OutlineTracker tracker_;
  outlines::RetryDelay delay_;
  asio::steady_timer retry_;
  std::shared_ptr<ApplicationConnection> connection_;
};

}  // namespace vell::tools

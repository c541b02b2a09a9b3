#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "outlines/tracking.h"
#include "tools/application_connection.h"

namespace vell::tools {

/// Follows which outlines are open in the application, on a connection of its own. While the application is
/// away no outline is open, and it asks again and again, ever more slowly.
class DocumentsSubscription {
 public:
  using ChangeHandler = std::function<void(const outlines::OutlineChanges& changes)>;

  DocumentsSubscription(asio::io_context& loop, std::string socketPath, ChangeHandler onChange);
  ~DocumentsSubscription() { stop(); }
  DocumentsSubscription(const DocumentsSubscription&) = delete;
  DocumentsSubscription& operator=(const DocumentsSubscription&) = delete;

  void start();
  void stop();

 private:
  void onLine(json::Text line);
  void onEnd();
  void reconcile(const std::vector<ipc::OutlineSummary>& open) { onChange_(tracker_.reconcile(open)); }

  asio::io_context& loop_;
  std::string socketPath_;
  ChangeHandler onChange_;
  outlines::OutlineTracker tracker_;
  outlines::RetryDelay delay_;
  asio::steady_timer retry_;
  std::shared_ptr<ApplicationConnection> connection_;
};

}  // namespace vell::tools

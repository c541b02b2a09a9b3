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

/// Follows which outlines are open in the application, on a connection of its own. When that ends it connects
/// again, ever more slowly; a connection that is lost and made anew changes nothing by itself. No outline is
/// open once the application has closed the subscription, or is still away when it connects again.
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
  void subscribeAgain();
  void onEnd();
  void reconcile(const std::vector<ipc::OutlineSummary>& open) { onChange_(tracker_.reconcile(open)); }

  asio::io_context& loop_;
  std::string socketPath_;
  ChangeHandler onChange_;
  outlines::OutlineTracker tracker_;
  outlines::RetryDelay delay_;
  bool followed_ = false;  // whether this subscription has sent a list
  asio::steady_timer retry_;
  std::shared_ptr<ApplicationConnection> connection_;
};

}  // namespace vell::tools

#pragma once

#include <asio/io_context.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ipc/application.h"
#include "ipc/message.h"
#include "outlines/opening.h"
#include "tools/vell_ipc.h"

namespace vell::tools {

/// Opens outlines, which waits for the application to start and for outlines to appear, on one thread beside
/// the event loop and one opening after the other. Its calls to the application go over the shared
/// connection.
class Openings {
 public:
  using Ticket = std::uint64_t;
  /// What runs beside the loop; it may wait. It passes the options on, so that it can be ended.
  using Work =
      std::function<ipc::Answer(ipc::Application& application, const outlines::OpenOptions& options)>;
  /// Called on the loop, and never before `start` returns.
  struct Handler {
    OutcomeHandler onDone;
    /// While it waits: the seconds waited, and how many it waits at most.
    std::function<void(double waited, double timeout)> onWait;
  };

  Openings(asio::io_context& loop, VellIPC& application);
  /// Does not wait for the work that is under way.
  ~Openings();
  Openings(const Openings&) = delete;
  Openings& operator=(const Openings&) = delete;

  Ticket start(Work work, Handler handler);
  /// The outcome is an error. The work ends before its next wait or call, or is never begun; a call of it
  /// that waits its turn is never sent, and one that was sent is ended.
  void cancel(Ticket ticket);

 private:
  class Shared;

  std::shared_ptr<Shared> shared_;
  Ticket nextTicket_ = 1;
};

}  // namespace vell::tools

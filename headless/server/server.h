#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "headless/server/application_socket.h"
#include "headless/server/client.h"
#include "headless/server/dispatch.h"
#include "headless/server/event_loop.h"
#include "headless/server/subscriptions.h"
#include "headless/server/workers.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// Bounds that keep one client from harming the others.
struct ServerLimits {
  /// A client that takes none of its waiting bytes for this long is dropped.
  std::chrono::milliseconds stall = std::chrono::minutes(2);
  /// Bytes that may wait for all clients together; beyond that, the client that has taken nothing for longest
  /// is dropped.
  std::size_t backlog = std::size_t{1} << 30;
  /// Bytes that requests of all clients together may have; beyond that, the client with the most is dropped.
  std::size_t received = std::size_t{512} << 20;
  /// How long one client is served before the others get their turn.
  std::chrono::milliseconds turn = std::chrono::milliseconds(5);
  /// What a client that leaves asked for may still take this long.
  std::chrono::milliseconds grace = std::chrono::milliseconds(50);
  /// Requests that run beside the loop at a time; others wait. One that waits for its outline runs nowhere.
  std::size_t jobs = 16;
  /// Those of them that may be scripts: others get a thread while endless ones run.
  std::size_t scripts = 12;
};

/// Serves the application to every client of the socket, in turns: on the loop's thread, or, where an answer
/// may take long, on one beside it. A client's requests are answered one after another. The references must
/// outlive the server.
class Server : private NotificationSink {
 public:
  Server(EventLoop& loop, Application& application, int listener, ServerLimits limits = {});
  ~Server() override;
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Takes no new clients and requests, tells observers that the application quits, and sends what waits, for
  /// at most `limit`.
  void closeAfterFlush(std::chrono::milliseconds limit);

 private:
  void send(std::uint64_t client, Notification notification) override;
  bool hasRoom(std::uint64_t client) const override;
  void keepOpen(std::uint64_t client, bool keep) override;
  void runBeside(std::function<void()> work, std::function<void()> done) override;

  void acceptClients();
  void admit(platform::Descriptor socket);
  void dropLongestIdle();

  void onReady(std::uint64_t id, short event);
  static bool isGone(const Client& client);
  void takeTurn(std::uint64_t id);
  void serve(Client& client);
  void begin(Client& client);
  bool threadIsFree(const Incoming& request) const;
  bool proceed(Client& client, const std::shared_ptr<Incoming>& request, bool threadIsFree);
  void startJob(Client& client, const std::shared_ptr<Incoming>& request);
  void finishJob(std::uint64_t id, const std::shared_ptr<Incoming>& request, bool wasScript,
                 std::optional<std::string> answer);
  void wait(Client& client, std::shared_ptr<Incoming> request);
  void resumeSoon();
  void resumeWaiting();
  void answered(Client& client, std::string answer);
  void lookAfterJobs();
  void lookAfterJobsSoon();
  void clientLeft(Client& client);
  void settle(Client& client);
  void drop(std::uint64_t id);

  void keepWithinBacklog(const Client& served);
  void keepWithinReceived();
  void dropStalled();

  EventLoop& loop_;
  Application& application_;
  int listener_;
  ServerLimits limits_;
  EventLoop::Timer stallTimer_;
  std::optional<EventLoop::Timer> jobTimer_;  ///< while there are jobs, or requests that wait
  std::uint64_t nextClient_ = 1;
  std::map<std::uint64_t, std::unique_ptr<Client>> clients_;
  Subscriptions subscriptions_;
  std::set<std::uint64_t> turns_;  // clients with requests left for their next turn
  std::size_t jobs_ = 0;           ///< requests that run beside the loop
  std::size_t scripts_ = 0;        ///< those of them that are scripts
  /// Requests, by client, that wait for a thread or for their outline.
  std::deque<std::pair<std::uint64_t, std::shared_ptr<Incoming>>> waiting_;
  std::optional<EventLoop::Timer> resumeTimer_;  ///< set once some of them may go on
  Workers workers_;
};

}  // namespace vell::headless

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "headless/server/outline_view.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// Delivers notifications to clients.
class NotificationSink {
 public:
  virtual ~NotificationSink() = default;
  /// Queues a line for the client.
  virtual void send(std::uint64_t client, std::string line) = 0;
  /// False while too much waits for the client; then `Subscriptions::clientCaughtUp` is called once it has
  /// room.
  virtual bool hasRoom(std::uint64_t client) const = 0;
  /// Keeps the client connected although it has ended its input.
  virtual void keepOpen(std::uint64_t client, bool keep) = 0;
};

/// What clients observe. A client gets a snapshot when a subscription begins and whenever the snapshot
/// differs from the last one, a moment after the change so that a burst of changes makes one. A slow client
/// misses snapshots in between, never the last one.
class Subscriptions : public ApplicationListener {
 public:
  /// All must outlive the subscriptions.
  Subscriptions(Scheduler& scheduler, Application& application, NotificationSink& sink);
  ~Subscriptions() override;

  /// Begin a subscription and return its id; the first snapshot follows the answer. Throw Problem where the
  /// path is not valid or does not select rows.
  std::string observeOutline(std::uint64_t client, OpenOutline& opened, const std::string& path,
                             const OutlineView& view);
  std::string observeDocuments(std::uint64_t client);

  void clientLeft(std::uint64_t client);
  void clientCaughtUp(std::uint64_t client);
  /// Ends every subscription; nothing is sent afterwards.
  void applicationQuits();

  void outlineChanged(OpenOutline& opened) override;
  void outlineClosing(OpenOutline& opened) override;
  void listChanged() override;

 private:
  /// What a subscription shows. Subscriptions with the same subject share one rendering.
  struct Subject {
    OpenOutline* opened;  ///< null: the list of documents
    std::string path;
    OutlineView view;

    auto key() const { return std::tuple(opened, path, view.format, view.shape, view.rowsOnly); }
    bool operator<(const Subject& other) const { return key() < other.key(); }
  };
  struct Subscription {
    std::uint64_t client;
    Subject subject;
    std::optional<std::size_t> shown;  ///< hash of the latest snapshot sent
  };
  using Rendered = std::map<Subject, std::string>;

  std::string add(std::uint64_t client, Subject subject);
  std::string render(const Subject& subject) const;
  void notifyChanged();
  void notify(const std::string& id, Subscription& subscription, Rendered& rendered);
  void schedule(Scheduler::Clock::duration delay);
  void close(const std::string& id, const char* reason);
  static std::string notification(const std::string& id, const Subject& subject, std::string_view kind,
                                  std::string_view data);

  Scheduler& scheduler_;
  Application& application_;
  NotificationSink& sink_;
  std::map<std::string, Subscription> subscriptions_;
  std::set<const OpenOutline*> changed_;  // null: the list of documents
  std::optional<Scheduler::Timer> timer_;
  Scheduler::Clock::duration pace_;
};

}  // namespace vell::headless

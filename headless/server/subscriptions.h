#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "headless/server/outline_view.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// A notification's line. What was observed is one text for all who observe it.
struct Notification {
  std::string head;
  std::shared_ptr<const std::string> data;
  std::string tail;
};

/// Delivers notifications to clients.
class NotificationSink {
 public:
  virtual ~NotificationSink() = default;
  /// Queues the notification for the client.
  virtual void send(std::uint64_t client, Notification notification) = 0;
  /// False while too much waits for the client; then `Subscriptions::clientCaughtUp` is called once it has
  /// room.
  virtual bool hasRoom(std::uint64_t client) const = 0;
  /// Keeps the client connected although it has ended its input.
  virtual void keepOpen(std::uint64_t client, bool keep) = 0;
  /// Does the work, which may throw Abandoned, on a thread beside the loop and then calls `done` on the loop;
  /// or both at once.
  virtual void runBeside(std::function<void()> work, std::function<void()> done) = 0;
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
  /// The client has room again, or the answer that it waited for.
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
  /// A subject as it was at one time; without a text where its path failed.
  struct Snapshot {
    std::shared_ptr<const std::string> text;
    std::size_t hash = 0;
  };
  struct Subscription {
    std::uint64_t client;
    Subject subject;
    bool answered;                       ///< its client knows of it
    std::optional<std::size_t> shown{};  ///< hash of the latest snapshot sent
  };
  using Snapshots = std::map<Subject, Snapshot>;

  std::string add(std::uint64_t client, Subject subject);
  void schedule(Scheduler::Clock::duration delay);
  Snapshots takeChanged(const OpenOutline* only = nullptr);
  void notifyChanged();
  void notifyAtOnce(Snapshots&& snapshots);
  void deliver(const Snapshots& snapshots);
  bool canHear(const Subscription& subscription) const;
  void renderFreely(const Subject& subject, Snapshot& snapshot) const;
  void render(const Subject& subject, Snapshot& snapshot) const;
  void close(const std::string& id, const char* reason);
  static Notification notification(const std::string& id, const Subject& subject, std::string_view kind,
                                   std::shared_ptr<const std::string> data);

  Scheduler& scheduler_;
  Application& application_;
  NotificationSink& sink_;
  std::map<std::string, Subscription> subscriptions_;
  std::set<const OpenOutline*> changed_;  // null: the list of documents
  std::optional<Scheduler::Timer> timer_;
  Scheduler::Clock::duration pace_;
  bool rendering_ = false;  // beside the loop
};

}  // namespace vell::headless

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
#include <utility>

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
  /// or both at once. Throws std::system_error where the system has no thread left.
  virtual void runBeside(std::function<void()> work, std::function<void()> done) = 0;
};

/// What clients observe. A client gets a snapshot when a subscription begins and whenever the snapshot
/// differs from the last one, a moment after the change so that a burst of changes makes one. A slow client
/// misses snapshots in between, never the last one. What takes long to render is rendered less often and
/// holds up nothing else.
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
  /// Ends every subscription, after the last state where that is quickly rendered; nothing is sent
  /// afterwards.
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
  /// How a subject comes to be rendered: a change makes it stale, it waits for its timer and then in the
  /// queue.
  struct State {
    Scheduler::Clock::duration effort{};      ///< what rendering it took the last time
    bool stale = false;                       ///< it has changed since
    bool underway = false;                    ///< it is being rendered
    std::optional<Scheduler::Timer> timer{};  ///< not before its end
  };
  using Queue = std::set<std::pair<Scheduler::Clock::duration, Subject>>;
  /// A subject as it was at one time; without a text where its path failed.
  struct Snapshot {
    std::shared_ptr<const std::string> text;
    std::size_t hash = 0;
    Scheduler::Clock::duration effort{};
  };
  struct Subscription {
    std::uint64_t client;
    Subject subject;
    bool answered;                       ///< its client knows of it
    bool missed = false;                 ///< there was no room for a snapshot
    std::optional<std::size_t> shown{};  ///< hash of the latest snapshot sent
  };

  std::string add(std::uint64_t client, Subject subject, Scheduler::Clock::duration effort);
  void changed(const OpenOutline* opened);
  void touch(const Subject& subject, Scheduler::Clock::duration delay);
  void wait(const Subject& subject, Scheduler::Clock::duration delay);
  void onTimer(const Subject& subject);
  void renderQueued();
  void start(const Subject& subject);
  void finish(const Subject& subject, const Snapshot& snapshot);
  void notifyAtOnce(const Queue& subjects);
  Queue changedSubjects() const;
  void deliver(const Subject& subject, const Snapshot& snapshot);
  bool isHeard(const Subject& subject);
  bool canHear(const Subscription& subscription) const;
  void render(const Subject& subject, Snapshot& snapshot) const;
  void close(const std::string& id, const char* reason);
  void dropIfUnobserved(const Subject& subject);
  static Notification notification(const std::string& id, const Subject& subject, std::string_view kind,
                                   std::shared_ptr<const std::string> data);

  Scheduler& scheduler_;
  Application& application_;
  NotificationSink& sink_;
  std::map<std::string, Subscription> subscriptions_;
  std::map<Subject, State> subjects_;  ///< those of the subscriptions
  Queue queue_;                        ///< stale ones that may be rendered, the quickest first
  std::size_t underway_ = 0;
};

}  // namespace vell::headless

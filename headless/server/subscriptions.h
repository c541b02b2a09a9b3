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

/// How notifications reach the clients.
class Outlet {
 public:
  virtual ~Outlet() = default;
  /// Queues a line for the client.
  virtual void send(std::uint64_t client, std::string line) = 0;
  /// False while the client has not taken what it was sent; `Subscriptions::clientCaughtUp` tells when it
  /// has.
  virtual bool takes(std::uint64_t client) const = 0;
  /// Whether the client is to stay although it sends nothing more.
  virtual void keepOpen(std::uint64_t client, bool keep) = 0;
};

/// What clients observe. A snapshot is sent when a subscription begins and whenever what it shows has become
/// different, a moment after the change so that a burst of changes is one. A client that is slow misses
/// snapshots in between, never the last one.
class Subscriptions : public ApplicationListener {
 public:
  /// All must outlive the subscriptions.
  Subscriptions(Scheduler& scheduler, Application& application, Outlet& outlet);
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
  /// What is shown; subscriptions that show the same are rendered once.
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
  void evaluate();
  void evaluate(const std::string& id, Subscription& subscription, Rendered& rendered);
  void schedule(Scheduler::Clock::duration delay);
  void close(const std::string& id, const char* reason);
  std::string notification(const std::string& id, const Subject& subject, std::string_view kind,
                           std::string_view data) const;

  Scheduler& scheduler_;
  Application& application_;
  Outlet& outlet_;
  std::map<std::string, Subscription> subscriptions_;
  std::set<const OpenOutline*> changed_;  // null: the list of documents
  std::optional<Scheduler::Timer> timer_;
  Scheduler::Clock::duration pace_;
};

}  // namespace vell::headless

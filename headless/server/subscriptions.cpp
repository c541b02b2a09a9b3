#include "headless/server/subscriptions.h"

#include <algorithm>
#include <vector>

#include "headless/editing/uuid.h"
#include "headless/server/answers.h"
#include "headless/server/outline_use.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

/// Changes within this time make one notification.
constexpr std::chrono::milliseconds usualPace{20};
constexpr std::chrono::milliseconds slowestPace{2'000};

const char* kindOf(const OpenOutline* opened, const OutlineView& view) {
  if (opened == nullptr) return "documents";
  return view.rowsOnly ? "rows" : "outline";
}

}  // namespace

Subscriptions::Subscriptions(Scheduler& scheduler, Application& application, NotificationSink& sink)
    : scheduler_(scheduler), application_(application), sink_(sink), pace_(usualPace) {
  application_.setListener(this);
}

Subscriptions::~Subscriptions() {
  application_.setListener(nullptr);
  if (timer_) scheduler_.cancel(*timer_);
}

std::string Subscriptions::observeOutline(std::uint64_t client, OpenOutline& opened, const std::string& path,
                                          const OutlineView& view) {
  checkPath(opened, path);
  return add(client, {&opened, path, view});
}

std::string Subscriptions::observeDocuments(std::uint64_t client) { return add(client, {nullptr, {}, {}}); }

std::string Subscriptions::add(std::uint64_t client, Subject subject) {
  const std::string id = newUuid();
  const bool isAnsweredAtOnce = ApplicationHold::current() == nullptr;
  changed_.insert(subject.opened);
  subscriptions_.emplace(id, Subscription{client, std::move(subject), isAnsweredAtOnce});
  sink_.keepOpen(client, true);
  if (isAnsweredAtOnce) schedule(std::chrono::milliseconds(0));
  return id;
}

void Subscriptions::clientLeft(std::uint64_t client) {
  for (auto at = subscriptions_.begin(); at != subscriptions_.end();)
    at = at->second.client == client ? subscriptions_.erase(at) : std::next(at);
}

void Subscriptions::clientCaughtUp(std::uint64_t client) {
  for (auto& [id, subscription] : subscriptions_) {
    if (subscription.client != client) continue;
    subscription.answered = true;
    changed_.insert(subscription.subject.opened);
  }
  if (!changed_.empty()) schedule(pace_);
}

void Subscriptions::applicationQuits() {
  notifyAtOnce(takeChanged());
  while (!subscriptions_.empty()) close(subscriptions_.begin()->first, "appQuitting");
}

void Subscriptions::outlineChanged(OpenOutline& opened) {
  changed_.insert(&opened);
  schedule(pace_);
}

void Subscriptions::outlineClosing(OpenOutline& opened) {
  // What is being rendered may wait for the outline, and would come too late.
  if (rendering_) changed_.insert(&opened);
  if (changed_.count(&opened) != 0) notifyAtOnce(takeChanged(&opened));
  std::vector<std::string> ended;
  for (const auto& [id, subscription] : subscriptions_)
    if (subscription.subject.opened == &opened) ended.push_back(id);
  for (const std::string& id : ended) close(id, "outlineClosed");
}

void Subscriptions::listChanged() {
  changed_.insert(nullptr);
  schedule(pace_);
}

void Subscriptions::schedule(Scheduler::Clock::duration delay) {
  if (timer_ || subscriptions_.empty()) return;
  timer_ = scheduler_.after(delay, [this] { notifyChanged(); });
}

/// What has to be rendered, all of it or what shows one outline. A client without room asks again.
Subscriptions::Snapshots Subscriptions::takeChanged(const OpenOutline* only) {
  Snapshots snapshots;
  for (const auto& [id, subscription] : subscriptions_) {
    const OpenOutline* opened = subscription.subject.opened;
    const bool isMeant = changed_.count(opened) != 0 && (only == nullptr || opened == only);
    if (isMeant && canHear(subscription)) snapshots.try_emplace(subscription.subject);
  }
  if (only == nullptr) changed_.clear();
  changed_.erase(only);
  return snapshots;
}

void Subscriptions::notifyChanged() {
  if (timer_) scheduler_.cancel(*timer_);
  timer_.reset();
  if (rendering_) return;
  const auto snapshots = std::make_shared<Snapshots>(takeChanged());
  if (snapshots->empty()) return;
  rendering_ = true;
  const auto start = Scheduler::Clock::now();
  sink_.runBeside(
      [this, snapshots] {
        for (auto& [subject, snapshot] : *snapshots) renderFreely(subject, snapshot);
      },
      [this, snapshots, start] {
        rendering_ = false;
        // What takes long to render is rendered less often.
        const auto effort = Scheduler::Clock::now() - start;
        pace_ = std::clamp<Scheduler::Clock::duration>(effort * 4, usualPace, slowestPace);
        deliver(*snapshots);
        if (!changed_.empty()) schedule(pace_);
      });
}

/// For a caller that nobody disturbs.
void Subscriptions::notifyAtOnce(Snapshots&& snapshots) {
  for (auto& [subject, snapshot] : snapshots) render(subject, snapshot);
  deliver(snapshots);
}

bool Subscriptions::canHear(const Subscription& subscription) const {
  return subscription.answered && sink_.hasRoom(subscription.client);
}

void Subscriptions::deliver(const Snapshots& snapshots) {
  for (auto& [id, subscription] : subscriptions_) {
    const auto found = snapshots.find(subscription.subject);
    if (found == snapshots.end() || !found->second.text || !canHear(subscription)) continue;
    const Snapshot& snapshot = found->second;
    if (std::exchange(subscription.shown, snapshot.hash) == snapshot.hash) continue;
    const Subject& subject = subscription.subject;
    sink_.send(subscription.client,
               notification(id, subject, kindOf(subject.opened, subject.view), snapshot.text));
  }
}

/// Waits until nobody changes the outline; one that was closed meanwhile has nothing to show.
void Subscriptions::renderFreely(const Subject& subject, Snapshot& snapshot) const {
  if (subject.opened == nullptr) return render(subject, snapshot);
  const auto find = [&]() -> const OpenOutline* {
    for (const auto& opened : application_.outlines())
      if (opened.get() == subject.opened) return opened.get();
    return nullptr;
  };
  if (const auto use = waitForOutline(find, Use::reading)) render(subject, snapshot);
}

void Subscriptions::render(const Subject& subject, Snapshot& snapshot) const {
  std::string text;
  if (subject.opened == nullptr) {
    text = summaries(application_);
  } else {
    try {
      text = renderPath(subject.view, *subject.opened, subject.path);
    } catch (const Abandoned&) {
      throw;
    } catch (const std::exception& failure) {
      return application_.report("Observing " + subject.path + ": " + failure.what());
    }
  }
  beside([&] { snapshot.hash = std::hash<std::string>()(text); });
  snapshot.text = std::make_shared<const std::string>(std::move(text));
}

void Subscriptions::close(const std::string& id, const char* reason) {
  const auto found = subscriptions_.find(id);
  const std::uint64_t client = found->second.client;
  auto data = std::make_shared<const std::string>(memberAnswer("reason", reason));
  sink_.send(client, notification(id, found->second.subject, "subscription.closed", std::move(data)));
  subscriptions_.erase(found);
  const bool others = std::any_of(subscriptions_.begin(), subscriptions_.end(),
                                  [&](const auto& entry) { return entry.second.client == client; });
  if (!others) sink_.keepOpen(client, false);
}

Notification Subscriptions::notification(const std::string& id, const Subject& subject, std::string_view kind,
                                         std::shared_ptr<const std::string> data) {
  const bool ofOutline = subject.opened != nullptr;
  Notification made{R"({"jsonrpc":"2.0","method":)" +
                        json::quoted(ofOutline ? "outline.observe" : "documents.observe") +
                        R"(,"params":{"data":)",
                    std::move(data), R"(,"kind":)" + json::quoted(kind)};
  if (ofOutline) made.tail += R"(,"outline":)" + json::quoted(subject.opened->persistentId());
  made.tail += R"(,"subscriptionId":)" + json::quoted(id) + "}}\n";
  return made;
}

}  // namespace vell::headless

#include "headless/server/subscriptions.h"

#include <algorithm>
#include <vector>

#include "headless/editing/uuid.h"
#include "headless/server/answers.h"
#include "headless/server/request.h"
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
  placePath(opened, path, view.shape);
  return add(client, {&opened, path, view});
}

std::string Subscriptions::observeDocuments(std::uint64_t client) { return add(client, {nullptr, {}, {}}); }

std::string Subscriptions::add(std::uint64_t client, Subject subject) {
  const std::string id = newUuid();
  changed_.insert(subject.opened);
  subscriptions_.emplace(id, Subscription{client, std::move(subject), std::nullopt});
  sink_.keepOpen(client, true);
  schedule(std::chrono::milliseconds(0));
  return id;
}

void Subscriptions::clientLeft(std::uint64_t client) {
  for (auto at = subscriptions_.begin(); at != subscriptions_.end();)
    at = at->second.client == client ? subscriptions_.erase(at) : std::next(at);
}

void Subscriptions::clientCaughtUp(std::uint64_t client) {
  for (const auto& [id, subscription] : subscriptions_)
    if (subscription.client == client) changed_.insert(subscription.subject.opened);
  if (!changed_.empty()) schedule(pace_);
}

void Subscriptions::applicationQuits() {
  notifyChanged();
  while (!subscriptions_.empty()) close(subscriptions_.begin()->first, "appQuitting");
}

void Subscriptions::outlineChanged(OpenOutline& opened) {
  changed_.insert(&opened);
  schedule(pace_);
}

void Subscriptions::outlineClosing(OpenOutline& opened) {
  notifyChanged();
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

void Subscriptions::notifyChanged() {
  if (timer_) scheduler_.cancel(*timer_);
  timer_.reset();
  const auto changed = std::exchange(changed_, {});
  const auto start = Scheduler::Clock::now();
  Rendered rendered;
  for (auto& [id, subscription] : subscriptions_)
    if (changed.count(subscription.subject.opened) != 0) notify(id, subscription, rendered);
  // What takes long to render is rendered less often.
  const auto effort = Scheduler::Clock::now() - start;
  pace_ = std::clamp<Scheduler::Clock::duration>(effort * 4, usualPace, slowestPace);
}

void Subscriptions::notify(const std::string& id, Subscription& subscription, Rendered& rendered) {
  if (!sink_.hasRoom(subscription.client)) return;
  const auto [entry, isNew] = rendered.try_emplace(subscription.subject);
  if (isNew) entry->second = render(subscription.subject);
  if (entry->second.empty()) return;
  const std::string& data = entry->second;
  const std::size_t hash = std::hash<std::string>()(data);
  if (std::exchange(subscription.shown, hash) == hash) return;
  const Subject& subject = subscription.subject;
  sink_.send(subscription.client, notification(id, subject, kindOf(subject.opened, subject.view), data));
}

/// Empty where the path fails on the outline as it is now.
std::string Subscriptions::render(const Subject& subject) const {
  if (subject.opened == nullptr) return summaries(application_);
  const OpenOutline& opened = *subject.opened;
  try {
    return headless::render(subject.view, opened.outline(),
                            placePath(opened, subject.path, subject.view.shape));
  } catch (const std::exception& failure) {
    application_.report("Observing " + subject.path + ": " + failure.what());
    return {};
  }
}

void Subscriptions::close(const std::string& id, const char* reason) {
  const auto found = subscriptions_.find(id);
  const std::uint64_t client = found->second.client;
  sink_.send(client,
             notification(id, found->second.subject, "subscription.closed", memberAnswer("reason", reason)));
  subscriptions_.erase(found);
  const bool others = std::any_of(subscriptions_.begin(), subscriptions_.end(),
                                  [&](const auto& entry) { return entry.second.client == client; });
  if (!others) sink_.keepOpen(client, false);
}

std::string Subscriptions::notification(const std::string& id, const Subject& subject, std::string_view kind,
                                        std::string_view data) {
  const bool ofOutline = subject.opened != nullptr;
  std::string params;
  json::Writer writer(params);
  writer.beginObject().key("data").raw(data).member("kind", kind);
  if (ofOutline) writer.member("outline", subject.opened->persistentId());
  writer.member("subscriptionId", id).endObject();
  return notificationLine(ofOutline ? "outline.observe" : "documents.observe", params);
}

}  // namespace vell::headless

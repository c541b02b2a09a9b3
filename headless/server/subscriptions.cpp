#include "headless/server/subscriptions.h"

#include <algorithm>
#include <ctime>
#include <system_error>
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
/// Subjects that are rendered at a time; some threads are kept for those that do not take long.
constexpr std::size_t mostUnderway = 4;
constexpr std::size_t mostCostly = 2;
constexpr std::chrono::milliseconds costly{50};

/// Of this thread's processor: to wait for others is no effort.
Scheduler::Clock::duration processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

const char* kindOf(const OpenOutline* opened, const OutlineView& view) {
  if (opened == nullptr) return "documents";
  return view.rowsOnly ? "rows" : "outline";
}

}  // namespace

Subscriptions::Subscriptions(Scheduler& scheduler, Application& application, NotificationSink& sink)
    : scheduler_(scheduler), application_(application), sink_(sink) {
  application_.setListener(this);
}

Subscriptions::~Subscriptions() {
  application_.setListener(nullptr);
  for (const auto& [subject, state] : subjects_)
    if (state.timer) scheduler_.cancel(*state.timer);
}

std::string Subscriptions::observeOutline(std::uint64_t client, OpenOutline& opened, const std::string& path,
                                          const OutlineView& view) {
  const auto start = processorTime();
  checkPath(opened, path);
  return add(client, {&opened, path, view}, processorTime() - start);
}

std::string Subscriptions::observeDocuments(std::uint64_t client) {
  return add(client, {nullptr, {}, {}}, {});
}

std::string Subscriptions::add(std::uint64_t client, Subject subject, Scheduler::Clock::duration effort) {
  const std::string id = newUuid();
  const bool isAnsweredAtOnce = ApplicationHold::current() == nullptr;
  subjects_.try_emplace(subject, State{.effort = effort});
  if (isAnsweredAtOnce) touch(subject, std::chrono::milliseconds(0));
  subscriptions_.emplace(id, Subscription{client, std::move(subject), isAnsweredAtOnce});
  sink_.keepOpen(client, true);
  return id;
}

void Subscriptions::clientLeft(std::uint64_t client) {
  for (auto at = subscriptions_.begin(); at != subscriptions_.end();) {
    const auto each = at++;
    if (each->second.client == client) dropIfUnobserved(subscriptions_.extract(each).mapped().subject);
  }
}

void Subscriptions::dropIfUnobserved(const Subject& subject) {
  const auto isOfIt = [&](const auto& entry) { return entry.second.subject.key() == subject.key(); };
  if (std::any_of(subscriptions_.begin(), subscriptions_.end(), isOfIt)) return;
  const State state = subjects_.extract(subject).mapped();
  if (state.timer) scheduler_.cancel(*state.timer);
  queue_.erase({state.effort, subject});
}

void Subscriptions::clientCaughtUp(std::uint64_t client) {
  for (auto& [id, subscription] : subscriptions_) {
    if (subscription.client != client) continue;
    const bool wasAnswered = std::exchange(subscription.answered, true);
    if (!wasAnswered || std::exchange(subscription.missed, false)) touch(subscription.subject, usualPace);
  }
}

void Subscriptions::applicationQuits() {
  notifyAtOnce(changedSubjects());
  while (!subscriptions_.empty()) close(subscriptions_.begin()->first, "appQuitting");
}

void Subscriptions::outlineChanged(OpenOutline& opened) { changed(&opened); }

void Subscriptions::outlineClosing(OpenOutline& opened) {
  Queue subjects = changedSubjects();
  std::erase_if(subjects, [&](const auto& each) { return each.second.opened != &opened; });
  notifyAtOnce(subjects);
  std::vector<std::string> ended;
  for (const auto& [id, subscription] : subscriptions_)
    if (subscription.subject.opened == &opened) ended.push_back(id);
  for (const std::string& id : ended) close(id, "outlineClosed");
}

void Subscriptions::listChanged() { changed(nullptr); }

void Subscriptions::changed(const OpenOutline* opened) {
  for (const auto& [subject, state] : subjects_)
    if (subject.opened == opened) touch(subject, usualPace);
}

void Subscriptions::touch(const Subject& subject, Scheduler::Clock::duration delay) {
  State& state = subjects_.at(subject);
  if (std::exchange(state.stale, true) || state.timer || state.underway) return;
  wait(subject, delay);
}

void Subscriptions::wait(const Subject& subject, Scheduler::Clock::duration delay) {
  subjects_.at(subject).timer = scheduler_.after(delay, [this, subject] { onTimer(subject); });
}

void Subscriptions::onTimer(const Subject& subject) {
  State& state = subjects_.at(subject);
  state.timer.reset();
  if (!state.stale) return;
  queue_.insert({state.effort, subject});
  renderQueued();
}

void Subscriptions::renderQueued() {
  while (!queue_.empty() && underway_ < (queue_.begin()->first > costly ? mostCostly : mostUnderway))
    start(queue_.extract(queue_.begin()).value().second);
}

/// While the outline is being changed the subject waits; another change is about to come. A client without
/// room asks again.
void Subscriptions::start(const Subject& subject) {
  State& state = subjects_.at(subject);
  if (subject.opened != nullptr && !subject.opened->users()->admits(Use::reading))
    return wait(subject, usualPace);
  state.stale = false;
  if (!isHeard(subject)) return;
  const auto use = std::make_shared<std::optional<OutlineUse>>();
  if (subject.opened != nullptr) use->emplace(*subject.opened, Use::reading);
  const auto snapshot = std::make_shared<Snapshot>();
  state.underway = true;
  ++underway_;
  try {
    sink_.runBeside(
        [this, subject, snapshot, use] {
          render(subject, *snapshot);
          use->reset();
        },
        [this, subject, snapshot] { finish(subject, *snapshot); });
  } catch (const std::system_error&) {  // no thread is left
    --underway_;
    state.underway = false;
    state.stale = true;
    wait(subject, slowestPace);
  }
}

/// What takes long to render is rendered less often.
void Subscriptions::finish(const Subject& subject, const Snapshot& snapshot) {
  --underway_;
  if (const auto found = subjects_.find(subject); found != subjects_.end()) {
    State& state = found->second;
    state.underway = false;
    state.effort = snapshot.effort;
    wait(subject, std::clamp<Scheduler::Clock::duration>(snapshot.effort * 4, usualPace, slowestPace));
    deliver(subject, snapshot);
  }
  renderQueued();
}

/// The quickest first.
Subscriptions::Queue Subscriptions::changedSubjects() const {
  Queue subjects;
  for (const auto& [subject, state] : subjects_)
    if (state.stale || state.underway) subjects.insert({state.effort, subject});
  return subjects;
}

/// Where somebody waits for it: only as far as that takes no time worth mentioning.
void Subscriptions::notifyAtOnce(const Queue& subjects) {
  Scheduler::Clock::duration total{};
  for (const auto& [effort, subject] : subjects) {
    total += effort;
    if (total > costly) return;
    if (!isHeard(subject)) continue;
    Snapshot snapshot;
    render(subject, snapshot);
    deliver(subject, snapshot);
  }
}

bool Subscriptions::canHear(const Subscription& subscription) const {
  return subscription.answered && sink_.hasRoom(subscription.client);
}

/// Whether anybody can be told. Whoever cannot misses it.
bool Subscriptions::isHeard(const Subject& subject) {
  bool heard = false;
  for (auto& [id, subscription] : subscriptions_) {
    if (subscription.subject.key() != subject.key()) continue;
    const bool hears = canHear(subscription);
    heard = heard || hears;
    subscription.missed = subscription.missed || !hears;
  }
  return heard;
}

void Subscriptions::deliver(const Subject& subject, const Snapshot& snapshot) {
  if (!snapshot.text) return;
  for (auto& [id, subscription] : subscriptions_) {
    if (subscription.subject.key() != subject.key()) continue;
    if (!canHear(subscription)) {
      subscription.missed = true;
      continue;
    }
    if (std::exchange(subscription.shown, snapshot.hash) == snapshot.hash) continue;
    sink_.send(subscription.client,
               notification(id, subject, kindOf(subject.opened, subject.view), snapshot.text));
  }
}

void Subscriptions::render(const Subject& subject, Snapshot& snapshot) const {
  const auto start = processorTime();
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
  snapshot.effort = processorTime() - start;
}

void Subscriptions::close(const std::string& id, const char* reason) {
  const auto found = subscriptions_.find(id);
  const std::uint64_t client = found->second.client;
  auto data = std::make_shared<const std::string>(memberAnswer("reason", reason));
  sink_.send(client, notification(id, found->second.subject, "subscription.closed", std::move(data)));
  dropIfUnobserved(subscriptions_.extract(found).mapped().subject);
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

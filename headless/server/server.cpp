#include "headless/server/server.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <iterator>
#include <system_error>

#include "headless/server/dispatch.h"
#include "headless/server/request.h"
#include "platform/socket.h"

namespace vell::headless {
namespace {

constexpr auto acceptPause = std::chrono::milliseconds(100);
/// How often to look whether a client whose request runs beside the loop is still there.
constexpr auto jobPace = std::chrono::milliseconds(25);
/// The number of a job that has not begun: that of none.
constexpr Workers::Id waitingJob = 0;

}  // namespace

Server::Server(EventLoop& loop, Application& application, int listener, ServerLimits limits)
    : loop_(loop),
      application_(application),
      listener_(listener),
      limits_(limits),
      subscriptions_(loop, application, *this),
      workers_(loop) {
  loop_.watch(listener_, POLLIN, [this](short) { acceptClients(); });
  loop_.access().whenAnnounced([this] { resumeSoon(); });
  stallTimer_ = loop_.after(limits_.stall, [this] { dropStalled(); });
}

Server::~Server() {
  workers_.endAll();
  loop_.access().whenAnnounced(nullptr);
  if (jobTimer_) loop_.cancel(*jobTimer_);
  if (resumeTimer_) loop_.cancel(*resumeTimer_);
  loop_.cancel(stallTimer_);
  loop_.forget(listener_);
  for (const auto& [id, client] : clients_) loop_.forget(client->descriptor());
}

void Server::acceptClients() {
  for (;;) {
    platform::Descriptor socket(accept(listener_, nullptr, nullptr));
    if (socket) {
      admit(std::move(socket));
      continue;
    }
    if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) return dropLongestIdle();
    if (errno != EINTR && errno != ECONNABORTED) return;
  }
}

void Server::admit(platform::Descriptor socket) {
  if (!platform::peerIsCurrentUser(socket.get())) return;
  platform::prepareSocket(socket.get());
  fcntl(socket.get(), F_SETFL, O_NONBLOCK);
  const std::uint64_t id = nextClient_++;
  auto client = std::make_unique<Client>(id, std::move(socket));
  loop_.watch(client->descriptor(), client->interest(), [this, id](short event) { onReady(id, event); });
  clients_.emplace(id, std::move(client));
}

/// Out of descriptors: drops the idle client that has been quiet longest. Without one, pauses accepting.
void Server::dropLongestIdle() {
  auto longestIdle = clients_.end();
  for (auto at = clients_.begin(); at != clients_.end(); ++at) {
    const bool older =
        longestIdle == clients_.end() || at->second->lastMoved() < longestIdle->second->lastMoved();
    if (at->second->idle() && older) longestIdle = at;
  }
  if (longestIdle != clients_.end()) return drop(longestIdle->first);
  loop_.setInterest(listener_, 0);
  loop_.after(acceptPause, [this] { loop_.setInterest(listener_, POLLIN); });
}

void Server::onReady(std::uint64_t id, short event) {
  Client& client = *clients_.at(id);
  const bool wasBehind = client.backlog() >= Client::backlogLimit;
  if (event == POLLOUT) client.flush();
  if (wasBehind && client.backlog() < Client::backlogLimit) subscriptions_.clientCaughtUp(id);
  if (event == POLLIN) {
    client.receive();
    if (client.received() >= Client::receiveTurn) keepWithinReceived();
    if (!clients_.contains(id)) return;
  }
  if (isGone(client)) clientLeft(client);
  serve(client);
  settle(client);
}

/// Nobody reads what the client would be sent, and nothing of its requests is left to carry out. A subscriber
/// that has ended its input is still there; macOS reports a hang-up for it all the same.
bool Server::isGone(const Client& client) {
  return !client.hasLeft() && client.interest() == 0 && !client.hasRequest() &&
         platform::readerIsGone(client.descriptor());
}

void Server::serve(Client& client) {
  const auto end = Client::Clock::now() + limits_.turn;
  while (client.hasRequest() && Client::Clock::now() < end) begin(client);
  if (client.overlong()) {
    const std::string limit = std::to_string(Client::lineLimit >> 20);
    client.send(
        errorLine("null", RpcCode::invalidRequest, "A request may not be longer than " + limit + " MiB."));
    client.finishInput();
    client.flush();
  }
}

/// Whoever waits already is the first to get a thread.
void Server::begin(Client& client) {
  auto request = std::make_shared<Incoming>(client.takeRequest());
  if (proceed(client, request, waiting_.empty() && threadIsFree(*request))) return;
  wait(client, std::move(request));
  resumeSoon();
}

bool Server::threadIsFree(const Incoming& request) const {
  return jobs_ < limits_.jobs && (!request.mayBeScript() || scripts_ < limits_.scripts);
}

/// Answers the request or has it answered; false where it has to wait.
bool Server::proceed(Client& client, const std::shared_ptr<Incoming>& request, bool threadIsFree) {
  const Incoming::Turn turn = request->turn(application_, threadIsFree);
  if (turn == Incoming::Turn::beside) startJob(client, request);
  if (turn == Incoming::Turn::now) {
    auto answer = request->answer(application_, {subscriptions_, client.id()});
    answered(client, std::move(*answer));
  }
  return turn != Incoming::Turn::later;
}

void Server::answered(Client& client, std::string answer) {
  client.send(std::move(answer));
  client.flush();
  if (client.backlog() >= Client::backlogLimit) keepWithinBacklog(client);
}

void Server::startJob(Client& client, const std::shared_ptr<Incoming>& request) {
  const std::uint64_t id = client.id();
  const bool isScript = request->mayBeScript();
  const auto answer = std::make_shared<std::optional<std::string>>(std::in_place);
  try {
    client.setJob(workers_.start(
        [this, id, request, answer] {
          *answer = request->answer(application_, {subscriptions_, id});
        },
        [this, id, request, isScript, answer] { finishJob(id, request, isScript, std::move(*answer)); }));
  } catch (const std::system_error&) {
    return client.send(request->refusal("Cannot start a thread for this; try again"));
  }
  ++jobs_;
  if (isScript) ++scripts_;
  if (client.hasLeft()) clientLeft(client);
  lookAfterJobsSoon();
}

/// Without an answer the request waits for its outline after all.
void Server::finishJob(std::uint64_t id, const std::shared_ptr<Incoming>& request, bool wasScript,
                       std::optional<std::string> answer) {
  --jobs_;
  if (wasScript) --scripts_;
  const auto found = clients_.find(id);
  if (found == clients_.end()) return;
  Client& client = *found->second;
  client.setJob(std::nullopt);
  if (!answer) return wait(client, request);
  answered(client, std::move(*answer));
  subscriptions_.clientCaughtUp(id);
  serve(client);
  settle(client);
}

void Server::wait(Client& client, std::shared_ptr<Incoming> request) {
  client.setJob(waitingJob);
  waiting_.emplace_back(client.id(), std::move(request));
  lookAfterJobsSoon();
}

void Server::resumeSoon() {
  if (waiting_.empty() || resumeTimer_) return;
  resumeTimer_ = loop_.after(std::chrono::milliseconds(0), [this] { resumeWaiting(); });
}

void Server::resumeWaiting() {
  resumeTimer_.reset();
  const auto end = Client::Clock::now() + limits_.turn;
  auto round = std::exchange(waiting_, {});
  while (!round.empty()) {
    auto [id, request] = std::move(round.front());
    round.pop_front();
    const auto found = clients_.find(id);
    if (found == clients_.end()) continue;
    Client& client = *found->second;
    client.setJob(std::nullopt);
    if (!proceed(client, request, threadIsFree(*request))) {
      wait(client, std::move(request));
      continue;
    }
    settle(client);
    if (Client::Clock::now() >= end) break;
  }
  if (round.empty()) return;
  std::move(round.begin(), round.end(), std::back_inserter(waiting_));
  resumeSoon();
}

/// A client whose next request waits behind a job is not watched.
void Server::lookAfterJobs() {
  jobTimer_.reset();
  bool any = false;
  for (const auto& [id, client] : clients_) {
    if (!client->job()) continue;
    any = true;
    if (!client->hasLeft() && platform::readerIsGone(client->descriptor())) clientLeft(*client);
  }
  if (any) lookAfterJobsSoon();
}

void Server::lookAfterJobsSoon() {
  if (!jobTimer_) jobTimer_ = loop_.after(jobPace, [this] { lookAfterJobs(); });
}

/// What it asked for is carried out, unless it takes long.
void Server::clientLeft(Client& client) {
  client.markLeft();
  loop_.forget(client.descriptor());
  if (client.job()) loop_.after(limits_.grace, [this, job = *client.job()] { workers_.giveUp(job); });
}

/// Drops a client that is done, or plans its next turn.
void Server::settle(Client& client) {
  if (client.done()) return drop(client.id());
  loop_.setInterest(client.descriptor(), client.interest());
  const std::uint64_t id = client.id();
  if (client.hasRequest() && turns_.insert(id).second)
    loop_.after(std::chrono::milliseconds(0), [this, id] { takeTurn(id); });
}

void Server::takeTurn(std::uint64_t id) {
  turns_.erase(id);
  const auto found = clients_.find(id);
  if (found == clients_.end()) return;
  serve(*found->second);
  settle(*found->second);
}

void Server::drop(std::uint64_t id) {
  const Client& client = *clients_.at(id);
  if (client.job()) workers_.giveUp(*client.job());
  if (std::erase_if(waiting_, [id](const auto& each) { return each.first == id; }) > 0) resumeSoon();
  loop_.forget(client.descriptor());
  clients_.erase(id);
  subscriptions_.clientLeft(id);
}

/// Only queues the notification; the loop writes it, since the caller may be in the middle of its
/// subscriptions.
void Server::send(std::uint64_t id, Notification notification) {
  Client& client = *clients_.at(id);
  client.send(std::move(notification.head));
  client.send(std::move(notification.data));
  client.send(std::move(notification.tail));
  loop_.setInterest(client.descriptor(), client.interest());
}

bool Server::hasRoom(std::uint64_t id) const { return clients_.at(id)->backlog() < Client::backlogLimit; }

void Server::keepOpen(std::uint64_t id, bool keep) {
  const auto found = clients_.find(id);
  if (found != clients_.end()) found->second->keepOpen(keep);
}

void Server::runBeside(std::function<void()> work, std::function<void()> done) {
  workers_.start(std::move(work), std::move(done));
}

void Server::keepWithinBacklog(const Client& served) {
  std::size_t total = 0;
  const Client* slowest = nullptr;
  for (const auto& [id, client] : clients_) {
    total += client->backlog();
    if (client->backlog() == 0 || client.get() == &served) continue;
    if (slowest == nullptr || client->lastMoved() < slowest->lastMoved()) slowest = client.get();
  }
  if (total <= limits_.backlog || slowest == nullptr) return;
  application_.report("A client that reads too slowly was dropped: too much waited for it");
  drop(slowest->id());
}

void Server::keepWithinReceived() {
  std::size_t total = 0;
  const Client* largest = nullptr;
  for (const auto& [id, client] : clients_) {
    total += client->received();
    if (largest == nullptr || client->received() > largest->received()) largest = client.get();
  }
  if (total <= limits_.received) return;
  application_.report("A client was dropped: too many large requests came at once");
  drop(largest->id());
}

void Server::dropStalled() {
  const auto oldest = Client::Clock::now() - limits_.stall;
  for (auto at = clients_.begin(); at != clients_.end();) {
    const Client& client = *(at++)->second;
    const bool stalled = client.backlog() > 0 && client.lastMoved() < oldest;
    if (stalled) application_.report("A client that reads nothing was dropped");
    if (stalled || (isGone(client) && !client.job()))
      drop(client.id());  // nothing is reported of a client without an interest
  }
  stallTimer_ = loop_.after(limits_.stall / 4, [this] { dropStalled(); });
}

void Server::closeAfterFlush(std::chrono::milliseconds limit) {
  workers_.endAll();
  waiting_.clear();
  loop_.forget(listener_);
  subscriptions_.applicationQuits();
  const auto end = EventLoop::Clock::now() + limit;
  for (auto at = clients_.begin(); at != clients_.end();) {
    Client& client = *(at++)->second;
    client.setJob(std::nullopt);
    client.finishInput();
    client.flush();
    settle(client);
  }
  while (!clients_.empty() && EventLoop::Clock::now() < end) loop_.runOnce(end - EventLoop::Clock::now());
}

}  // namespace vell::headless

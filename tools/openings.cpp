#include "tools/openings.h"

#include <asio/post.hpp>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

namespace vell::tools {

/// What the loop and the worker share; the worker's thread keeps it alive.
class Openings::Shared : public ipc::Application, public std::enable_shared_from_this<Shared> {
 public:
  Shared(asio::io_context& loop, VellIPC& application) : application_(application), loop_(&loop) {}

  // On the loop.
  void add(Ticket ticket, Work work, Handler handler);
  void cancel(Ticket ticket);
  void stop();

  // On the worker.
  ipc::Answer request(std::string_view method, const std::string& params) override;

 private:
  struct Job {
    Ticket ticket;
    Work work;
  };

  void run();
  std::optional<Job> nextJob();
  Outcome perform(const Job& job);
  void throwIfCancelled(Ticket ticket);
  bool isCancelled(Ticket ticket);
  void reportWaiting(Ticket ticket, double waited, double timeout);
  void callForWorker(Ticket ticket, const std::string& method, const std::string& params);
  void answerWorker(Outcome outcome);
  /// Runs the action on the loop, unless that has ended.
  void post(std::function<void()> action);
  void done(Ticket ticket, Outcome outcome);

  // Used on the loop only.
  VellIPC& application_;
  std::map<Ticket, Handler> handlers_;
  struct Call {
    Ticket opening;
    VellIPC::Ticket ticket;
  };
  std::optional<Call> call_;  // the one that the worker waits for

  Ticket current_ = 0;  // used on the worker only: the opening that it performs

  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  asio::io_context* loop_;  // none once stopped
  std::deque<Job> jobs_;
  std::set<Ticket> cancelled_;
  std::optional<Outcome> answer_;  // to the worker's call
  bool started_ = false;
};

static std::exception_ptr cancelled() {
  return std::make_exception_ptr(std::runtime_error("The opening was cancelled"));
}

void Openings::Shared::add(Ticket ticket, Work work, Handler handler) {
  handlers_.emplace(ticket, std::move(handler));
  const std::lock_guard<std::mutex> lock(mutex_);
  jobs_.push_back({ticket, std::move(work)});
  if (!std::exchange(started_, true)) std::thread([self = shared_from_this()] { self->run(); }).detach();
  changed_.notify_all();
}

void Openings::Shared::cancel(Ticket ticket) {
  if (handlers_.count(ticket) == 0) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    cancelled_.insert(ticket);
  }
  if (call_ && call_->opening == ticket) application_.cancel(call_->ticket);
}

void Openings::Shared::stop() {
  handlers_.clear();
  const std::lock_guard<std::mutex> lock(mutex_);
  loop_ = nullptr;
  changed_.notify_all();
}

void Openings::Shared::run() {
  while (auto job = nextJob()) {
    post([self = shared_from_this(), ticket = job->ticket,
          outcome = std::make_shared<Outcome>(perform(*job))] { self->done(ticket, std::move(*outcome)); });
  }
}

std::optional<Openings::Shared::Job> Openings::Shared::nextJob() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !loop_ || !jobs_.empty(); });
  if (!loop_) return std::nullopt;
  Job job = std::move(jobs_.front());
  jobs_.pop_front();
  return job;
}

Outcome Openings::Shared::perform(const Job& job) {
  outlines::OpenOptions options;
  options.onPoll = [this, ticket = job.ticket, timeout = options.timeout](double waited) {
    throwIfCancelled(ticket);
    reportWaiting(ticket, waited, timeout);
  };
  current_ = job.ticket;
  try {
    throwIfCancelled(job.ticket);
    return job.work(*this, options);
  } catch (const std::exception&) {
    return std::current_exception();
  }
}

void Openings::Shared::throwIfCancelled(Ticket ticket) {
  if (isCancelled(ticket)) std::rethrow_exception(cancelled());
}

bool Openings::Shared::isCancelled(Ticket ticket) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return !loop_ || cancelled_.count(ticket) > 0;
}

void Openings::Shared::reportWaiting(Ticket ticket, double waited, double timeout) {
  post([self = shared_from_this(), ticket, waited, timeout] {
    const auto handler = self->handlers_.find(ticket);
    if (handler != self->handlers_.end() && handler->second.onWait) handler->second.onWait(waited, timeout);
  });
}

ipc::Answer Openings::Shared::request(std::string_view method, const std::string& params) {
  post([self = shared_from_this(), ticket = current_, method = std::string(method), params] {
    self->callForWorker(ticket, method, params);
  });
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !loop_ || answer_; });
  if (!answer_) throw std::runtime_error("The server has ended");
  Outcome outcome = std::move(*answer_);
  answer_.reset();
  lock.unlock();
  if (auto* answer = std::get_if<ipc::Answer>(&outcome)) return std::move(*answer);
  try {
    std::rethrow_exception(std::get<std::exception_ptr>(outcome));
  } catch (const ipc::VellIPCError& error) {
    throw error.underlying;  // as every Application does
  }
}

void Openings::Shared::callForWorker(Ticket ticket, const std::string& method, const std::string& params) {
  if (isCancelled(ticket)) return answerWorker(cancelled());
  const auto onOutcome = [self = shared_from_this()](Outcome outcome) {
    self->call_.reset();
    self->answerWorker(std::move(outcome));
  };
  call_ = {ticket, application_.call(method, params, onOutcome)};
}

void Openings::Shared::answerWorker(Outcome outcome) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answer_ = std::move(outcome);
  changed_.notify_all();
}

void Openings::Shared::post(std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (loop_) asio::post(*loop_, std::move(action));
}

void Openings::Shared::done(Ticket ticket, Outcome outcome) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (cancelled_.erase(ticket) > 0) outcome = cancelled();
  }
  auto handler = handlers_.extract(ticket);
  if (!handler.empty()) handler.mapped().onDone(std::move(outcome));
}

Openings::Openings(asio::io_context& loop, VellIPC& application)
    : shared_(std::make_shared<Shared>(loop, application)) {}

Openings::~Openings() { shared_->stop(); }

Openings::Ticket Openings::start(Work work, Handler handler) {
  shared_->add(nextTicket_, std::move(work), std::move(handler));
  return nextTicket_++;
}

void Openings::cancel(Ticket ticket) { shared_->cancel(ticket); }

}  // namespace vell::tools

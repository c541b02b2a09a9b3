#include "headless/server/workers.h"

#include <pthread.h>

#include <utility>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

/// Paths nest deep, and the usual stack of a thread is small on macOS.
constexpr std::size_t stackBytes = 16 << 20;

pthread_t startThread(void* (*run)(void*), void* argument) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackBytes);
  pthread_t thread;
  const int failure = pthread_create(&thread, &attributes, run, argument);
  pthread_attr_destroy(&attributes);
  if (failure != 0) throw Problem("Cannot start a thread for this request; try again");
  return thread;
}

}  // namespace

Workers::~Workers() { endAll(); }

Workers::Id Workers::start(std::function<void()> work, std::function<void()> done) {
  const Id id = next_++;
  auto job = std::make_unique<Job>(*this, id, std::move(work), std::move(done));
  job->thread = startThread(run, job.get());
  jobs_.emplace(id, std::move(job));
  return id;
}

void* Workers::run(void* argument) {
  Job& job = *static_cast<Job*>(argument);
  Workers& workers = job.workers;
  const Id id = job.id;
  try {
    const ApplicationHold hold(workers.loop_.access(), job.abandoned);
    throwIfAbandoned();
    job.work();
  } catch (const Abandoned&) {
  }
  workers.loop_.post([&workers, id] { workers.finish(id); });
  return nullptr;
}

void Workers::finish(Id id) {
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  const auto job = std::move(jobs_.extract(found).mapped());
  pthread_join(job->thread, nullptr);
  job->done();
}

void Workers::giveUp(Id id) {
  const auto found = jobs_.find(id);
  if (found != jobs_.end()) found->second->abandoned = true;
}

void Workers::endAll() {
  for (const auto& [id, job] : jobs_) job->abandoned = true;
  for (const auto& [id, job] : jobs_) pthread_join(job->thread, nullptr);
  jobs_.clear();
}

}  // namespace vell::headless

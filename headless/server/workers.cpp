#include "headless/server/workers.h"

#include <utility>

namespace vell::headless {

Workers::~Workers() { endAll(); }

Workers::Id Workers::start(std::function<void()> work, std::function<void()> done) {
  const Id id = next_++;
  auto job = std::make_unique<Job>(id, std::move(work), std::move(done));
  job->thread.emplace([this, &job = *job] { run(job); });
  jobs_.emplace(id, std::move(job));
  return id;
}

void Workers::run(const Job& job) {
  const Id id = job.id;
  try {
    const ApplicationHold hold(loop_.access(), job.abandoned);
    throwIfAbandoned();
    job.work();
  } catch (const Abandoned&) {
  }
  mailbox_.post([this, id] { finish(id); });
}

void Workers::finish(Id id) {
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) return;
  const auto job = std::move(jobs_.extract(found).mapped());
  job->thread.reset();
  job->done();
}

void Workers::giveUp(Id id) {
  const auto found = jobs_.find(id);
  if (found != jobs_.end()) found->second->abandoned = true;
}

void Workers::endAll() {
  for (const auto& [id, job] : jobs_) job->abandoned = true;
  for (const auto& [id, job] : jobs_) job->thread.reset();
  jobs_.clear();
}

}  // namespace vell::headless

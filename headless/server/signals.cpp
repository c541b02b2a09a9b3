#include "headless/server/signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

sigset_t quitSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&set, signal);
  return set;
}

}  // namespace

QuitSignals::QuitSignals() {
  int ends[2];
  if (pipe(ends) != 0) throw systemProblem("Cannot make a pipe");
  readEnd_ = platform::Descriptor(ends[0]);
  writeEnd_ = platform::Descriptor(ends[1]);
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  const sigset_t set = quitSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  if (pthread_create(&thread_, nullptr, wait, this) != 0) throw Problem("Cannot start a thread");
}

QuitSignals::~QuitSignals() {
  pthread_kill(thread_, SIGTERM);
  pthread_join(thread_, nullptr);
}

void* QuitSignals::wait(void* self) {
  const sigset_t set = quitSignals();
  int caught = 0;
  sigwait(&set, &caught);
  auto& signals = *static_cast<QuitSignals*>(self);
  signals.caught_ = true;
  const char byte = 0;
  const ssize_t written = write(signals.writeEnd_.get(), &byte, 1);
  return written == 1 ? self : nullptr;
}

}  // namespace vell::headless

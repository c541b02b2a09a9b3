#include "headless/access.h"

#include <chrono>

namespace vell::headless {
namespace {

thread_local ApplicationHold* currentHold = nullptr;

/// Abandoning a request announces nothing.
constexpr std::chrono::milliseconds glance{20};

}  // namespace

ApplicationHold::ApplicationHold(ApplicationAccess& access, const std::atomic<bool>& abandoned)
    : access_(access), abandoned_(abandoned), lock_(access.mutex_) {
  currentHold = this;
}

ApplicationHold::~ApplicationHold() { currentHold = nullptr; }

ApplicationHold* ApplicationHold::current() { return currentHold; }

void ApplicationHold::waitForOthers() {
  access_.changed_.wait_for(lock_, glance);
  throwIfAbandoned();
}

void throwIfAbandoned() {
  if (currentHold != nullptr && currentHold->isAbandoned()) throw Abandoned();
}

}  // namespace vell::headless

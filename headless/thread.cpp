#include "headless/thread.h"

#include <utility>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

constexpr std::size_t stackBytes = 16 << 20;

}  // namespace

Thread::Thread(std::function<void()> work) : work_(std::move(work)) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackBytes);
  const int failure = pthread_create(&thread_, &attributes, run, this);
  pthread_attr_destroy(&attributes);
  if (failure != 0) throw Problem("Cannot start a thread for this; try again");
}

Thread::~Thread() { pthread_join(thread_, nullptr); }

void* Thread::run(void* self) {
  static_cast<Thread*>(self)->work_();
  return nullptr;
}

}  // namespace vell::headless

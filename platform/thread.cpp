#include "platform/thread.h"

#include <exception>
#include <system_error>
#include <utility>

namespace vell::platform {

Thread::Thread(std::function<void()> work, std::size_t stackBytes) : work_(std::move(work)) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackBytes);
  const int error = pthread_create(&thread_, &attributes, run, this);
  pthread_attr_destroy(&attributes);
  if (error != 0) throw std::system_error(error, std::generic_category(), "Cannot start a thread");
}

Thread::~Thread() { pthread_join(thread_, nullptr); }

void* Thread::run(void* self) {
  static_cast<Thread*>(self)->work_();
  return nullptr;
}

void onStackOf(std::size_t bytes, const std::function<void()>& work) {
  std::exception_ptr failure;
  const auto guarded = [&] {
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
  };
  { const Thread thread(guarded, bytes); }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace vell::platform

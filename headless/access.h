#pragma once

#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>

namespace vell::headless {

/// The work of this thread is wanted no longer: its client left, its time is up, or the application ends.
class Abandoned : public std::exception {
 public:
  const char* what() const noexcept override { return "the request was given up"; }
};

/// The application belongs to one thread at a time: the loop's, or that of a request which takes long. A
/// thread holds it while it finds its outline and while it tells of a change, and sets it aside for what
/// takes long and touches nothing but an outline that has admitted it (`OutlineUse`) for reading or for
/// changing:
///
///   const ApplicationHold hold(access, abandoned);      // in the thread of a request
///   …                                                   // the application is ours
///   beside([&] { rows = evaluate(path); });             // others go on meanwhile
///
/// Threads without a hold (tests, the loop's own) run `beside` as it stands.
class ApplicationAccess {
 public:
  std::mutex& mutex() { return mutex_; }
  /// Tells whoever waits for others that something has changed. The caller holds the application.
  void announce() {
    changed_.notify_all();
    if (announced_) announced_();
  }
  /// Has `told` called with every announcement; the threads that wait need no such call.
  void whenAnnounced(std::function<void()> told) { announced_ = std::move(told); }

 private:
  friend class ApplicationHold;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> announced_;
};

/// Holds the application for the thread that makes it.
class ApplicationHold {
 public:
  ApplicationHold(ApplicationAccess& access, const std::atomic<bool>& abandoned);
  ~ApplicationHold();
  ApplicationHold(const ApplicationHold&) = delete;
  ApplicationHold& operator=(const ApplicationHold&) = delete;

  /// The hold of this thread; null where it has none.
  static ApplicationHold* current();

  bool isAside() const { return !lock_.owns_lock(); }
  void setAside() { lock_.unlock(); }
  void takeBack() { lock_.lock(); }
  /// Sets the application aside until another thread announces something. Throws Abandoned.
  void waitForOthers();
  void announce() { access_.announce(); }
  bool isAbandoned() const { return abandoned_; }

 private:
  ApplicationAccess& access_;
  const std::atomic<bool>& abandoned_;
  std::unique_lock<std::mutex> lock_;
};

/// Throws Abandoned where nobody wants the work of this thread any longer. Cheap; for loops that run beside.
void throwIfAbandoned();

/// Runs `work` while others have the application. Such work touches nothing but its own outline.
template <class Work>
void beside(Work&& work) {
  ApplicationHold* const hold = ApplicationHold::current();
  if (hold == nullptr || hold->isAside()) return work();
  hold->setAside();
  try {
    work();
  } catch (...) {
    hold->takeBack();
    throw;
  }
  hold->takeBack();
}

}  // namespace vell::headless

#pragma once

#include <memory>
#include <stdexcept>

#include "headless/access.h"
#include "headless/storage/open_outline.h"

namespace vell::headless {

/// Counts its thread among the users of an outline, from when the outline admits it until the end of its
/// life.
class OutlineUse {
 public:
  /// `find` gives the outline, or null where there is none, and is asked again after each wait: the outline
  /// may be gone then. Throws Abandoned; the loop's own thread must not need to wait.
  template <class Find>
  OutlineUse(Find find, Use use) : use_(use) {
    while (const OpenOutline* opened = find()) {
      users_ = opened->users();
      if (users_->admits(use)) {
        users_->enter(use);
        return;
      }
      wait();
    }
    users_.reset();
  }
  ~OutlineUse() {
    if (!users_) return;
    users_->leave(use_);
    if (ApplicationHold* const hold = ApplicationHold::current()) hold->announce();
  }
  OutlineUse(const OutlineUse&) = delete;
  OutlineUse& operator=(const OutlineUse&) = delete;

  bool found() const { return users_ != nullptr; }

 private:
  void wait() const {
    ApplicationHold* const hold = ApplicationHold::current();
    if (hold == nullptr) throw std::logic_error("the loop cannot wait for an outline");
    users_->beginWaiting(use_);
    try {
      hold->waitForOthers();
    } catch (...) {
      users_->endWaiting(use_);
      throw;
    }
    users_->endWaiting(use_);
  }

  const Use use_;
  std::shared_ptr<Users> users_;
};

}  // namespace vell::headless

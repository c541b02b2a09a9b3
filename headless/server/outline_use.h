#pragma once

#include <memory>
#include <optional>
#include <stdexcept>

#include "headless/access.h"
#include "headless/storage/open_outline.h"

namespace vell::headless {

/// Counts among the users of an outline, which must admit it, until the end of its life.
class OutlineUse {
 public:
  OutlineUse(const OpenOutline& opened, Use use) : users_(opened.users()), use_(use) { users_->enter(use_); }
  ~OutlineUse() {
    if (!users_) return;
    users_->leave(use_);
    if (ApplicationHold* const hold = ApplicationHold::current()) hold->announce();
  }
  OutlineUse(OutlineUse&&) = default;
  OutlineUse& operator=(OutlineUse&&) = delete;

  bool isOf(const OpenOutline& opened) const { return users_ == opened.users(); }

 private:
  std::shared_ptr<Users> users_;  ///< null once moved from
  const Use use_;
};

/// Counts among those who wait for an outline until the end of its life.
class OutlineWait {
 public:
  OutlineWait(const OpenOutline& opened, Use use) : users_(opened.users()), use_(use) {
    users_->beginWaiting(use_);
  }
  ~OutlineWait() { users_->endWaiting(use_); }
  OutlineWait(const OutlineWait&) = delete;
  OutlineWait& operator=(const OutlineWait&) = delete;

 private:
  const std::shared_ptr<Users> users_;
  const Use use_;
};

/// Waits until the outline admits this thread, which must not be the loop's. `find` gives the outline, or
/// null where there is none, and is asked again after each wait: the outline may be gone then. Throws
/// Abandoned.
template <class Find>
std::optional<OutlineUse> waitForOutline(Find find, Use use) {
  while (const OpenOutline* opened = find()) {
    if (opened->users()->admits(use)) return std::optional<OutlineUse>(std::in_place, *opened, use);
    ApplicationHold* const hold = ApplicationHold::current();
    if (hold == nullptr) throw std::logic_error("the loop cannot wait for an outline");
    const OutlineWait waiting(*opened, use);
    hold->waitForOthers();
  }
  return std::nullopt;
}

}  // namespace vell::headless

#include "cli/waiting_line.h"

namespace vell::cli {

void WaitingLine::show() {
  if (shown_ || !console_.showsProgress()) return;
  console_.say("Waiting for " + std::string(what_) + "...");
  shown_ = true;
}

std::function<void()> WaitingLine::whenSlow() {
  if (!console_.showsProgress()) return {};
  return [this] { show(); };
}

std::function<void(double)> WaitingLine::whilePolling() {
  return [this](double waited) {
    if (waited > 1) show();
  };
}

// To the line's start, and erases it.
void WaitingLine::wipe() {
  if (shown_) console_.say("\r\x1b[K");
  shown_ = false;
}

}  // namespace vell::cli

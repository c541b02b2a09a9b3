#pragma once

#include <functional>
#include <string_view>

#include "cli/console.h"

namespace vell::cli {

/// Says on standard error what a command waits for, on a terminal and only there, and wipes that when it goes
/// out of scope. Nothing else may be printed meanwhile.
class WaitingLine {
 public:
  /// What is waited for, after "Waiting for".
  WaitingLine(Console& console, std::string_view what) : console_(console), what_(what) {}
  ~WaitingLine() { wipe(); }
  WaitingLine(const WaitingLine&) = delete;
  WaitingLine& operator=(const WaitingLine&) = delete;

  /// To be called when the wait has taken a second.
  void show();
  void wipe();
  /// Calls `show`; empty where that shows nothing, so that nobody need look at a clock.
  std::function<void()> whenSlow();
  /// The same for who is called again and again with the seconds waited.
  std::function<void(double)> whilePolling();

 private:
  Console& console_;
  std::string_view what_;
  bool shown_ = false;
};

inline constexpr std::string_view vellToAnswer = "Vell to answer";
inline constexpr std::string_view openingOfOutline = "Vell to open the outline";

}  // namespace vell::cli

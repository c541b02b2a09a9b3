#pragma once

#include <chrono>
#include <string>

namespace vell::evaluation {

/// A day of the calendar, wherever one lives.
using Day = std::chrono::local_days;
/// A point in time.
using Moment = std::chrono::sys_time<std::chrono::milliseconds>;
/// What the clock on the wall shows at a moment.
using LocalTime = std::chrono::local_time<std::chrono::milliseconds>;

/// The present moment and the time zone that an evaluation takes for the user's.
class Clock {
 public:
  virtual ~Clock() = default;

  virtual Moment now() const = 0;
  virtual LocalTime localTimeAt(Moment moment) const = 0;
  /// Of a time that the clocks jump over or show twice, one of the moments near it.
  virtual Moment momentAt(LocalTime local) const = 0;
};

/// The system's clock and zone.
class SystemClock : public Clock {
 public:
  /// Also reads the zone anew where it has changed.
  Moment now() const override;
  LocalTime localTimeAt(Moment moment) const override;
  Moment momentAt(LocalTime local) const override;
};

/// "2026-11-21 07:06:37", as the user's clock shows the moment.
std::string wallClockText(Moment moment);

}  // namespace vell::evaluation

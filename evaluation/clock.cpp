#include "evaluation/clock.h"

#include <ctime>
#include <mutex>

#include "document/timestamp.h"

namespace vell::evaluation {

using namespace std::chrono;

namespace {

/// The C library keeps one zone for all threads, which each of these calls may read anew.
std::mutex zone;

}  // namespace

Moment SystemClock::now() const {
  const std::lock_guard held(zone);
  tzset();
  return floor<milliseconds>(system_clock::now());
}

LocalTime SystemClock::localTimeAt(Moment moment) const {
  const auto whole = floor<seconds>(moment);
  const std::time_t time = whole.time_since_epoch().count();
  std::tm local{};
  const std::lock_guard held(zone);
  localtime_r(&time, &local);
  const year_month_day date(year(local.tm_year + 1900), month(static_cast<unsigned>(local.tm_mon + 1)),
                            day(static_cast<unsigned>(local.tm_mday)));
  return local_days(date) + hours(local.tm_hour) + minutes(local.tm_min) + seconds(local.tm_sec) +
         (moment - whole);
}

Moment SystemClock::momentAt(LocalTime local) const {
  const auto midnight = floor<days>(local);
  const year_month_day date(midnight);
  const hh_mm_ss time(local - midnight);
  std::tm parts{};
  parts.tm_year = static_cast<int>(date.year()) - 1900;
  parts.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
  parts.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
  parts.tm_hour = static_cast<int>(time.hours().count());
  parts.tm_min = static_cast<int>(time.minutes().count());
  parts.tm_sec = static_cast<int>(time.seconds().count());
  parts.tm_isdst = -1;
  const std::lock_guard held(zone);
  return Moment(seconds(std::mktime(&parts))) + time.subseconds();
}

std::string wallClockText(Moment moment) {
  const milliseconds local = SystemClock().localTimeAt(floor<seconds>(moment)).time_since_epoch();
  std::string text = document::formatTimestamp(local.count());
  text[text.find('T')] = ' ';
  text.pop_back();
  return text;
}

}  // namespace vell::evaluation

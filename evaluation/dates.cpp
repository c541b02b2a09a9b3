#include "evaluation/dates.h"

#include <cmath>
#include <limits>

#include "document/timestamp.h"

namespace vell::evaluation {
namespace {

using namespace std::chrono;

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
/// The dates that can be written, and more days than lie between them.
constexpr Day firstDate{year(0) / 1 / 1}, lastDate{year(9999) / 12 / 31};
constexpr double mostDays = 4e6;

std::optional<Date> parse(std::string_view text, const Clock& clock) {
  constexpr std::size_t dayLength = 10;
  const std::string string(text);
  if (text.size() == dayLength) {
    const auto midnight = document::parseTimestamp(string + "T00:00Z");
    return midnight ? std::optional<Date>(floor<days>(LocalTime(milliseconds(*midnight)))) : std::nullopt;
  }
  // What still is a time with a zone put behind it had none.
  if (const auto local = document::parseTimestamp(string + "Z"))
    return clock.momentAt(LocalTime(milliseconds(*local)));
  const auto moment = document::parseTimestamp(text);
  return moment ? std::optional<Date>(Moment(milliseconds(*moment))) : std::nullopt;
}

}  // namespace

std::optional<Date> Dates::dateOf(const Value& value) const {
  if (const auto* day = std::get_if<Day>(&value)) return *day;
  if (const auto* moment = std::get_if<Moment>(&value)) return *moment;
  if (const auto* text = std::get_if<std::string_view>(&value)) return parse(*text, clock_);
  if (const auto* text = std::get_if<std::string>(&value)) return parse(*text, clock_);
  return std::nullopt;
}

Value Dates::add(const Value& left, const Value& right) const {
  const double first = numberOf(left), second = numberOf(right);
  const auto date = std::isnan(first) ? dateOf(left) : std::isnan(second) ? dateOf(right) : std::nullopt;
  return date ? plus(*date, std::isnan(first) ? second : first) : Value(first + second);
}

Value Dates::subtract(const Value& left, const Value& right) const {
  const double first = numberOf(left), second = numberOf(right);
  const auto date = std::isnan(first) ? dateOf(left) : std::nullopt;
  if (!date) return first - second;
  const auto from = std::isnan(second) ? dateOf(right) : std::nullopt;
  return from ? Value(daysBetween(*from, *date)) : plus(*date, -second);
}

Day Dates::dayOf(const Date& date) const {
  if (const auto* day = std::get_if<Day>(&date)) return *day;
  return floor<days>(clock_.localTimeAt(std::get<Moment>(date)));
}

/// Whole days are those of the calendar, whatever the clocks do on them: the same time on another day. What
/// is left of a day counts for moments only.
Value Dates::plus(const Date& date, double count) const {
  if (!(std::abs(count) < mostDays)) return noNumber;
  const days whole(static_cast<int>(count));
  const Day day = dayOf(date) + whole;
  if (day < firstDate || day > lastDate) return noNumber;
  const auto* moment = std::get_if<Moment>(&date);
  if (moment == nullptr) return day;
  const auto rest = round<milliseconds>(duration<double, days::period>(count) - whole);
  return (whole == days(0) ? *moment : clock_.momentAt(clock_.localTimeAt(*moment) + whole)) + rest;
}

double Dates::daysBetween(const Date& from, const Date& to) const {
  const auto* first = std::get_if<Moment>(&from);
  const auto* second = std::get_if<Moment>(&to);
  if (first == nullptr || second == nullptr) return static_cast<double>((dayOf(to) - dayOf(from)).count());
  return duration<double, days::period>(clock_.localTimeAt(*second) - clock_.localTimeAt(*first)).count();
}

}  // namespace vell::evaluation

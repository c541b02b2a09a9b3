#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "evaluation/clock.h"
#include "evaluation/value.h"

namespace vell::evaluation {

/// A whole day or a moment.
using Date = std::variant<Day, Moment>;

/// Dates as one evaluation sees them: however long it takes, "now" is the moment at which it began.
class Dates {
 public:
  /// The clock must outlive the object.
  explicit Dates(const Clock& clock) : clock_(clock), now_(clock.now()) {}

  Moment now() const { return now_; }
  Day today() const { return dayOf(now_); }

  /// The date that a value is, or that its text spells: "2026-05-04", or with a time "2026-05-04T12:00",
  /// which is local where no zone stands behind it.
  std::optional<Date> dateOf(const Value& value) const;

  /// The local day of a moment.
  Day dayOf(const Date& date) const;

  /// Adds days to a date, subtracts them, or gives the days between two dates; not a number for anything
  /// else.
  Value add(const Value& left, const Value& right) const;
  Value subtract(const Value& left, const Value& right) const;

 private:
  Value plus(const Date& date, double count) const;
  double daysBetween(const Date& from, const Date& to) const;

  const Clock& clock_;
  Moment now_;
};

}  // namespace vell::evaluation

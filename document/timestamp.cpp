#include "document/timestamp.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace vell::document {
namespace {

constexpr Timestamp perSecond = 1000;
constexpr Timestamp perDay = 86'400 * perSecond;
constexpr Timestamp earliest = -62'167'219'200'000;  // 0000-01-01T00:00:00Z
constexpr Timestamp latest = 253'402'300'799'999;    // 9999-12-31T23:59:59.999Z

/// Appends `value` in decimal, padded with zeros to `width` digits.
char* put(char* out, unsigned value, int width) {
  for (int digit = width - 1; digit >= 0; --digit) {
    out[digit] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  return out + width;
}

std::chrono::year_month_day dateOf(Timestamp days) {
  return std::chrono::year_month_day(std::chrono::sys_days(std::chrono::days(days)));
}

/// Takes pieces off the front of a text; once one is missing nothing more is taken.
class Scanner {
 public:
  explicit Scanner(std::string_view rest) : rest_(rest) {}

  bool atEnd() const { return rest_.empty(); }
  bool ok() const { return ok_; }

  bool accept(std::string_view oneOf) {
    if (rest_.empty() || oneOf.find(rest_.front()) == std::string_view::npos) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void expect(std::string_view oneOf) { ok_ = accept(oneOf) && ok_; }

  int digits(std::size_t count) {
    int value = 0;
    for (; count > 0; --count) {
      if (!atDigit()) return ok_ = false, 0;
      value = value * 10 + takeDigit();
    }
    return value;
  }
  /// What stands behind the decimal point, in milliseconds.
  int fraction() {
    int value = 0;
    if (!atDigit()) ok_ = false;
    for (int unit = 100; atDigit(); unit /= 10) value += unit * takeDigit();
    return value;
  }

 private:
  bool atDigit() const { return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; }
  int takeDigit() {
    const int digit = rest_.front() - '0';
    rest_.remove_prefix(1);
    return digit;
  }

  std::string_view rest_;
  bool ok_ = true;
};

/// Minutes east of UTC.
int scanZone(Scanner& scan) {
  if (scan.atEnd() || scan.accept("Zz")) return 0;
  const bool west = scan.accept("-");
  if (!west) scan.expect("+");
  const int hours = scan.digits(2);
  scan.accept(":");
  const int minutes = hours * 60 + scan.digits(2);
  return west ? -minutes : minutes;
}

}  // namespace

Timestamp currentTime() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

void appendTimestamp(std::string& out, Timestamp time) {
  time = std::clamp(time, earliest, latest);
  const Timestamp inDay = ((time % perDay) + perDay) % perDay;
  const std::chrono::year_month_day date = dateOf((time - inDay) / perDay);
  const auto seconds = static_cast<unsigned>(inDay / perSecond);
  const auto milliseconds = static_cast<unsigned>(inDay % perSecond);
  std::array<char, 24> text{};
  char* end = put(text.data(), static_cast<unsigned>(static_cast<int>(date.year())), 4);
  *end++ = '-';
  end = put(end, static_cast<unsigned>(date.month()), 2);
  *end++ = '-';
  end = put(end, static_cast<unsigned>(date.day()), 2);
  *end++ = 'T';
  end = put(end, seconds / 3600, 2);
  *end++ = ':';
  end = put(end, seconds / 60 % 60, 2);
  *end++ = ':';
  end = put(end, seconds % 60, 2);
  if (milliseconds != 0) {
    *end++ = '.';
    end = put(end, milliseconds, 3);
  }
  *end++ = 'Z';
  out.append(text.data(), static_cast<std::size_t>(end - text.data()));
}

std::string formatTimestamp(Timestamp time) {
  std::string text;
  appendTimestamp(text, time);
  return text;
}

std::optional<Timestamp> parseTimestamp(std::string_view text) {
  Scanner scan(text);
  const int year = scan.digits(4);
  scan.expect("-");
  const int month = scan.digits(2);
  scan.expect("-");
  const int day = scan.digits(2);
  scan.expect("Tt ");
  const int hour = scan.digits(2);
  scan.expect(":");
  const int minute = scan.digits(2);
  const int second = scan.accept(":") ? scan.digits(2) : 0;
  const int millisecond = scan.accept(".,") ? scan.fraction() : 0;
  const int zone = scanZone(scan);
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!scan.ok() || !scan.atEnd() || !date.ok() || hour > 23 || minute > 59 || second > 60)
    return std::nullopt;
  const Timestamp days = std::chrono::sys_days(date).time_since_epoch().count();
  const Timestamp seconds = hour * 3600 + (minute - zone) * 60 + second;
  return days * perDay + seconds * perSecond + millisecond;
}

}  // namespace vell::document

// Dates in paths, at ten in the morning of a day in May, in a zone with daylight saving time.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>

#include "tests/evaluation/support.h"

namespace vell::evaluation {
namespace {

Moment momentOf(std::string_view text) {
  return Moment(std::chrono::milliseconds(*document::parseTimestamp(text)));
}

/// The system's conversions, at a moment that does not move.
class StoppedClock : public SystemClock {
 public:
  explicit StoppedClock(std::string_view now) : now_(momentOf(now)) {}
  Moment now() const override { return ++asked_, now_; }
  int asked() const { return asked_; }

 private:
  Moment now_;
  mutable int asked_ = 0;
};

/// Lives in a zone for as long as a test runs.
class DatesInPaths : public testing::Test {
 protected:
  DatesInPaths() { live("CET-1CEST,M3.5.0,M10.5.0/3"); }
  ~DatesInPaths() override {
    former_.empty() ? unsetenv("TZ") : setenv("TZ", former_.c_str(), 1);
    tzset();
  }
  static void live(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

  const StoppedClock clock{"2026-05-04T08:00Z"};

 private:
  std::string former_ = std::getenv("TZ") == nullptr ? "" : std::getenv("TZ");
};

constexpr const char* kTasks = R"(
task past @due=2026-05-03
task today @due=2026-05-04
task noon @due=2026-05-04T12:00
task late @due=2026-05-04T22:30:00Z
task east @due=2026-05-04T00:30+09:00
task week @due=2026-05-11
task never @due=someday
task own @modified=2020-01-01
)";

const std::map<std::string, const char*> kModified{{"past", "2026-05-03T22:30Z"},
                                                   {"today", "2026-05-02T22:00Z"},
                                                   {"noon", "2026-05-03T21:59Z"},
                                                   {"late", "2026-05-04T07:30Z"}};

const Selection kRows[] = {
    // A day is over when the next one begins, here
    {"//* @due < today()", "past east"},
    {"//* @due <= today()", "past today noon east"},
    {"//* today() >= @due", "past today noon east"},
    {"//* @due = today()", "today noon"},
    {"//* @due != today()", "past late east week never own"},
    {"//* @due < now()", "past east"},
    {"//* @due <= now()", "past today east"},
    {"//* @due > now()", "noon late week"},
    {"//* @due < date(\"2026-05-04\")", "past east"},
    {"//* @due < date(2026-05-04T12:00)", "past east"},
    {"//* @due >= date(\"2026-05-04T22:30Z\")", "late week"},
    {"//* @due and today() = true and today() > 5", ""},
    // Arithmetic
    {"//* @due > today() and @due <= today() + 7", "late week"},
    {"//* @due > today() and 8 + today() > @due", "late week"},
    {"//* @due - 7 = today()", "week"},
    {"//* @due - today() = 7", "week"},
    {"//* @due - today() < 0", "past east"},
    {"//* @due >= today() - (today() - date(\"2026-05-02\"))", "past today noon late east week"},
    {"//* count(//* @due < today()) = 2 and @due = today()", "today noon"},
    {"//* @due and date(@due) = null", "never"},
    // Modifiers and relations of texts
    {"//* @due <[d] 2026-05-04", "past east"},
    {"//* @due =[d] today()", "today noon"},
    {"//* @due contains today()", "today noon late east"},
    {"//* @due =[n] today()", ""},
    // Times of rows
    {"//* @modified = today()", "past late"},
    {"//* @modified = today() - 1", "today noon"},
    {"//* @modified >= today() - 1 and @modified < today()", "today noon"},
    {"//* @modified > now() - 1/24", "late"},
    {"//* now() - @modified < 1/24", "late"},
    {"//* today() - @modified = 3", "east week never"},
    {"//* @created = date(\"2026-05-01\") and @created < @modified", "past today noon late"},
    {"//* @modified > 2026-05-04T07:00Z", "late"},
    {"//* @modified beginswith \"2026-05-03\"", "past noon"},
    {"//* @modified < 2025-01-01 and @modified", "own"},
    {"//* @created", ""},
    {"//*/run::* @modified = today()", "past late"},
    // What was meant otherwise
    {"//* @due = today", ""},
    {"//* @due <= today",
     "error: \"today\" is a word here; write today() for the date, \"today\" for the text"},
    {"//* @due <= \"today\"", "past today noon late east week never"},
    {"//* now =[d] @due", "error: \"now\" is a word here; write now() for the date, \"now\" for the text"},
    {"//* @due < tomorrow",
     "error: \"tomorrow\" is a word here; write today() + 1 for the date, \"tomorrow\" for the text"},
    {"//* @due < today-7",
     "error: \"today-7\" is a word here; write today() - 7 for the date, \"today-7\" for the text"},
    {"//* @due - today < 7",
     "error: \"today\" is a word here; write today() for the date, \"today\" for the text"},
    {"//* yesterday() = @due", "error: there is no function yesterday() here; write today() - 1"},
    {"//* tody() = @due", "error: there is no function tody() here; did you mean today()?"},
    {"//* date(\"May\") = @due",
     "error: \"May\" is no date: write date(\"2026-05-04\") or date(\"2026-05-04T12:00\")"},
    {"//* date() = @due", "error: date() takes one argument, not 0"},
    {"//* now(1) = @due", "error: now() takes no argument, not 1"},
    {"today()", "error: it gives a date, not rows (predicates compare values: //* count(child::*) > 0)"},
};

TEST_F(DatesInPaths, SelectRows) {
  const auto outline = outlineOf(kTasks);
  for (const Row* row : document::childrenOf(outline->root())) {
    const auto modified = kModified.find(row->text().string());
    const document::Timestamp created = *document::parseTimestamp("2026-05-01T10:00Z");
    outline->setTimes(outline->mutableRow(*row), created,
                      modified == kModified.end() ? created : *document::parseTimestamp(modified->second));
  }
  for (const Selection& row : kRows)
    EXPECT_EQ(selected(*outline, row.path, nullptr, {}, clock), row.rows) << row.path;
}

TEST_F(DatesInPaths, CountDaysOfTheCalendar) {
  const auto outline = outlineOf("task a");
  for (const char* comparison : {
           "date(\"2026-03-28T12:00\") + 1 = date(\"2026-03-29T10:00Z\")",
           "date(\"2026-03-28T12:00\") - -1 = date(\"2026-03-29T12:00+02:00\")",
           "date(\"2026-10-24T12:00\") + 1 = date(\"2026-10-25T11:00Z\")",
           "date(\"2026-10-25T12:00\") - 1 = date(\"2026-10-24T10:00Z\")",
           "date(\"2026-03-30T12:00\") - date(\"2026-03-28T12:00\") = 2",
           "date(\"2026-03-30\") - date(\"2026-03-28T23:59\") = 2",
           "date(\"2026-03-29T03:30\") - 1/24 = date(\"2026-03-29T00:30Z\")",
           "date(\"2026-03-29\") + 1 = date(\"2026-03-30\")",
           "date(\"2026-03-29\") + 1.9 = date(\"2026-03-30\")",
           "date(\"2024-02-28\") + 2 = date(\"2024-03-01\")",
           "date(\"2027-01-01\") - 1 = date(\"2026-12-31\")",
           "date(\"2026-01-31T00:30\") = date(\"2026-01-30T23:30Z\")",
           // None of these is a date
           "date(\"9999-12-31\") + 1 != date(\"9999-12-31\")",
           "today() + 9999999999 != today()",
           "today() + @missing != today()",
           "7 - today() != today()",
           "today() + today() != today()",
           "-today() != today() and round(today()) != today() and today() * 1 != today()",
       })
    EXPECT_EQ(selected(*outline, std::string("//* ") + comparison, nullptr, {}, clock), "a") << comparison;
}

TEST_F(DatesInPaths, BelongToTheZoneAndToOneMoment) {
  const auto outline = outlineOf("task a\ntask b");
  const std::string path = "//* today() = date(\"2026-05-04\") and now() = date(\"2026-05-04T08:00Z\")";
  for (const auto& [zone, rows] :
       {std::pair("UTC0", "a b"), std::pair("HST10", ""), std::pair("NZST-12", "a b")}) {
    live(zone);
    const StoppedClock here("2026-05-04T08:00Z");
    EXPECT_EQ(selected(*outline, path, nullptr, {}, here), rows) << zone;
    EXPECT_EQ(here.asked(), 1) << zone;
  }
}

}  // namespace
}  // namespace vell::evaluation

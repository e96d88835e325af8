// Dates and times for axis labels.
#include "services/date_format.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "frame/module_state.h"

namespace {

// Sets the date and time orders for one test and restores the defaults.
struct Orders {
  Orders(const char* date, const char* monthYear, int32_t timeZero = 0, char separator = ':') {
    std::memcpy(zv::gDateOrder, date, 4);
    std::memcpy(zv::gMonthYearOrder, monthYear, 3);
    zv::gTimeLeadingZero = timeZero;
    zv::gTimeSeparator = separator;
  }
  ~Orders() { zv::ResetLocaleDefaults(); }
};

std::string Date(double value, char type) {
  char buffer[zv::kDateTextSize];
  std::memset(buffer, 'x', sizeof buffer);
  zv::FormatDate(buffer, value, type);
  return buffer;
}

// Day 1 is 1 January 1950. Reference: the civil calendar of <chrono>, for
// every day from 1950 to 2099, leap days included; the day number's year
// is printed in two digits.
TEST(FormatDate, DayNumbersFollowTheCalendar) {
  using namespace std::chrono;
  Orders orders("DMY/", "my/");
  const sys_days first = year{1950} / January / 1;
  const sys_days last = year{2099} / December / 31;
  int mismatches = 0;
  for (sys_days day = first; day <= last && mismatches < 5; day += days{1}) {
    const year_month_day ymd{day};
    char expected[16];
    std::snprintf(expected, sizeof expected, "%02u/%02u/%02d", static_cast<unsigned>(ymd.day()),
                  static_cast<unsigned>(ymd.month()), static_cast<int>(ymd.year()) % 100);
    const double n = (day - first).count() + 1;
    if (Date(n, 'D') != expected) {
      ADD_FAILURE() << "day " << n << ": " << Date(n, 'D') << " instead of " << expected;
      ++mismatches;
    }
  }
}

struct Row {
  int line;
  const char* dateOrder;
  const char* monthYearOrder;
  int32_t timeZero;
  char timeSeparator;
  double value;
  char type;
  const char* text;
};

TEST(FormatDate, OrdersLettersAndTypes) {
  constexpr Row kRows[] = {
      // 'D' by gDateOrder: 'd' and 'm' "%d", 'D', 'M', 'Y' and 'y' "%02d" (the
      // calendar itself, 2000 included, is checked day by day above).
      {__LINE__, "mdy/", "my/", 0, ':', 1.0, 'D', "1/1/50"},
      {__LINE__, "mdy/", "my/", 0, ':', 0.6, 'D', "1/1/50"},    // rounds to day 1
      {__LINE__, "mdy/", "my/", 0, ':', 0.4, 'D', "12/31/49"},  // day 0
      {__LINE__, "mdy/", "my/", 0, ':', 790.0, 'D', "2/29/52"},
      {__LINE__, "DMY.", "MY.", 0, ':', 790.0, 'D', "29.02.52"},
      {__LINE__, "ymd-", "ym-", 0, ':', 790.0, 'D', "52-2-29"},
      {__LINE__, "dMy/", "My/", 0, ':', 1096.0, 'D', "31/12/52"},
      {__LINE__, "mdy/", "my/", 0, ':', 18263.0, 'D', "1/1/00"},  // 'y' pads as well
      // 'M': month number 1 is January 1950; 'M' and the year "%2d".
      {__LINE__, "mdy/", "my/", 0, ':', 1.0, 'M', "1/50"},
      {__LINE__, "mdy/", "MY/", 0, ':', 1.0, 'M', " 1/50"},
      {__LINE__, "mdy/", "my/", 0, ':', 12.0, 'M', "12/50"},
      {__LINE__, "mdy/", "my/", 0, ':', 13.0, 'M', "1/51"},
      {__LINE__, "mdy/", "ym-", 0, ':', 13.0, 'M', "51-1"},
      {__LINE__, "mdy/", "my/", 0, ':', 600.0, 'M', "12/99"},
      {__LINE__, "mdy/", "my/", 0, ':', 601.0, 'M', "1/ 0"},  // past 1200 months
      // 'Q': quarter 1 is the first of 1950; "Q%d" and the year "%02d".
      {__LINE__, "mdy/", "my/", 0, ':', 1.0, 'Q', "Q1/50"},
      {__LINE__, "mdy/", "my/", 0, ':', 4.0, 'Q', "Q4/50"},
      {__LINE__, "mdy/", "MY.", 0, ':', 5.0, 'Q', "Q1.51"},
      {__LINE__, "mdy/", "ym-", 0, ':', 5.0, 'Q', "51-Q1"},
      {__LINE__, "mdy/", "my/", 0, ':', 201.0, 'Q', "Q1/00"},
      // 'T' minutes and 'S' seconds.
      {__LINE__, "mdy/", "my/", 0, ':', 0.0, 'T', "0:00"},
      {__LINE__, "mdy/", "my/", 0, ':', 74.6, 'T', "1:15"},
      {__LINE__, "mdy/", "my/", 1, ':', 75.0, 'T', "01:15"},
      {__LINE__, "mdy/", "my/", 1, ':', 600.0, 'T', "10:00"},
      {__LINE__, "mdy/", "my/", 0, '.', 1439.0, 'T', "23.59"},
      {__LINE__, "mdy/", "my/", 0, ':', 3725.0, 'S', "1:02:05"},
      {__LINE__, "mdy/", "my/", 1, ':', 3725.0, 'S', "01:02:05"},
      {__LINE__, "mdy/", "my/", 0, ':', 59.0, 'S', "0:00:59"},
      {__LINE__, "mdy/", "my/", 0, ':', 86399.0, 'S', "23:59:59"},
      // No text.
      {__LINE__, "mdy/", "my/", 0, ':', 1.0, 'X', ""},
      {__LINE__, "mdy/", "my/", 0, ':', 1e12, 'D', ""},
      {__LINE__, "mdy/", "my/", 0, ':', std::numeric_limits<double>::quiet_NaN(), 'T', ""},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    Orders orders(r.dateOrder, r.monthYearOrder, r.timeZero, r.timeSeparator);
    EXPECT_EQ(Date(r.value, r.type), r.text);
  }
}

// Values far outside any calendar still give a terminated text that fits.
TEST(FormatDate, ExtremeValuesStayInTheBuffer) {
  Orders orders("DMY/", "MY/", 1, ':');
  for (char type : {'D', 'M', 'Q', 'T', 'S'}) {
    for (double v : {-2147483000.0, -1.0, 2147483000.0}) {
      SCOPED_TRACE(std::string(1, type) + std::to_string(v));
      EXPECT_LT(Date(v, type).size(), static_cast<size_t>(zv::kDateTextSize));
    }
  }
}

}  // namespace

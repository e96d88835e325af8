#include "services/date_format.h"

#include <cstdint>
#include <cstdio>

#include "frame/module_state.h"

namespace zv {
namespace {

// First day in the year (from 0) of February to December, in a common year.
constexpr int64_t kMonthStarts[11] = {31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
// Days of each month of a leap year, for the day moved back from the 1st.
constexpr int kLeapMonthDays[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Appends with snprintf, never past the end of the buffer.
struct Writer {
  char* buffer;
  int used = 0;
  void Put(const char* format, int64_t value) {
    const int room = kDateTextSize - used;
    const int n = std::snprintf(buffer + used, static_cast<size_t>(room), format,
                                static_cast<long long>(value));
    if (n > 0) used += n < room ? n : room - 1;
  }
  void Put(char c) {
    if (used < kDateTextSize - 1) {
      buffer[used++] = c;
      buffer[used] = '\0';
    }
  }
};

// Day number to day, month and two-digit year. The year is cut from a
// 365.25-day mean year and the month from the limits of a common year; a
// leap year then moves every date past February one day back.
void DayDate(int64_t n, int64_t* day, int64_t* month, int64_t* year) {
  const int64_t d = n + 18262;  // 1 January 1900 is day 1
  const int64_t y = static_cast<int64_t>(static_cast<double>(d) / 365.25);
  const int64_t k = static_cast<int64_t>(static_cast<double>(d) - static_cast<double>(y) * 365.25);
  int64_t m = 1;
  int64_t start = 0;
  for (int i = 0; i < 11 && k >= kMonthStarts[i]; ++i) {
    m = i + 2;
    start = kMonthStarts[i];
  }
  int64_t dd = k - start + 1;
  if (y % 4 == 0 && m > 2) {
    if (dd == 1) {
      --m;
      dd = kLeapMonthDays[m - 1];
    } else {
      --dd;
    }
  }
  *day = dd;
  *month = m;
  *year = y > 99 ? y % 100 : y;
}

}  // namespace

void FormatDate(char* buffer, double value, char type) {
  buffer[0] = '\0';
  // Dates and times are counted in int32 by the sheet; anything past that
  // (or not a number) has no text.
  if (!(value > -2147483648.0 && value < 2147483647.0)) return;
  const int64_t n = static_cast<int64_t>(value + 0.5);
  Writer out{buffer};

  switch (type) {
    case 'D': {
      int64_t day, month, year;
      DayDate(n, &day, &month, &year);
      for (int field = 0; field < 3; ++field) {
        switch (gDateOrder[field]) {
          case 'D':
            out.Put("%02lld", day);
            break;
          case 'd':
            out.Put("%lld", day);
            break;
          case 'M':
            out.Put("%02lld", month);
            break;
          case 'm':
            out.Put("%lld", month);
            break;
          case 'Y':
          case 'y':
            out.Put("%02lld", year);
            break;
          default:
            break;
        }
        if (field < 2) out.Put(gDateOrder[3]);
      }
      return;
    }
    case 'M':
    case 'Q': {
      const int64_t perYear = type == 'M' ? 12 : 4;
      const int64_t cycle = 100 * perYear;
      int64_t m = n + 50 * perYear;  // month or quarter 1 is the first of 1950
      if (m > cycle) m = (m - 1) % cycle + 1;
      const int64_t year = (m - 1) / perYear;
      const int64_t part = (m - 1) % perYear + 1;
      for (int field = 0; field < 2; ++field) {
        switch (gMonthYearOrder[field]) {
          case 'M':
            out.Put(type == 'M' ? "%2lld" : "Q%lld", part);
            break;
          case 'm':
            out.Put(type == 'M' ? "%lld" : "Q%lld", part);
            break;
          case 'Y':
          case 'y':
            out.Put(type == 'M' ? "%2lld" : "%02lld", year);
            break;
          default:
            break;
        }
        if (field == 0) out.Put(gMonthYearOrder[2]);
      }
      return;
    }
    case 'T':
    case 'S': {
      const int64_t hours = type == 'T' ? n / 60 : n / 3600;
      const int64_t minutes = type == 'T' ? n % 60 : (n % 3600) / 60;
      if (gTimeLeadingZero && hours < 10) out.Put('0');
      out.Put("%lld", hours);
      out.Put(gTimeSeparator);
      out.Put("%02lld", minutes);
      if (type == 'S') {
        out.Put(gTimeSeparator);
        out.Put("%02lld", n % 60);
      }
      return;
    }
    default:
      return;
  }
}

}  // namespace zv

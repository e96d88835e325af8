// Dates and times as the sheet stores them, plain doubles, printed for axis
// labels by a type letter: 'D' day number (day 1 is 1 January 1950), 'M'
// month number, 'Q' quarter number, 'T' minutes, 'S' seconds.
#pragma once

namespace zv {

// Every text FormatDate writes fits a buffer of this size.
inline constexpr int kDateTextSize = 32;

// Writes the date or time text of `value` into `buffer` (kDateTextSize
// bytes) by the locale's orders (gDateOrder, gMonthYearOrder,
// gTimeLeadingZero, gTimeSeparator). An unknown type letter, or a value too
// large to be a date or a time, gives an empty text.
void FormatDate(char* buffer, double value, char type);

}  // namespace zv

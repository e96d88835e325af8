// How a double becomes report text: the general six-digit form of every
// report table, fixed-point fields, whole numbers in a field, and the reading
// of a number typed by the user. All of them honour the locale values read at
// start (gDecimalChar, gLeadingZero) and write into the caller's buffer, which
// holds `width` + 1 bytes; none allocates, since report writers call them
// thousands of times per pane.
#pragma once

#include <cstdint>

namespace zv {

// The longest text FormatNumber can give ("-0.00000123457" is 14), plus
// the terminator, rounded up: a buffer of this size takes any width up to it.
inline constexpr int32_t kNumberTextSize = 32;

// The fast path of FormatNumber's six significant digits, for 1e-6 <=
// magnitude < 1e6: the digits d1..d6 and the exponent e with magnitude =
// 0.d1..d6 x 10^e, correctly rounded, or kNoShortDigits where it cannot
// prove them cheaply and the full decimal conversion decides.
inline constexpr int32_t kNoShortDigits = 1000;
int32_t ShortSixDigits(double magnitude, char digits[6]);

// Six significant digits: "0.05", "12.5", "100.0", "1.23457E6", "1.E7".
// MissingValue (and a value that is not finite) gives an empty text, and so
// does a text longer than `width`: a number is never cut. Returns the length.
int32_t FormatNumber(char* buffer, double value, int32_t width);
// FormatNumber padded with blanks on the right to exactly `width`.
void FormatNumberLeft(char* buffer, double value, int32_t width);
// FormatNumber moved right and padded with blanks on the left to exactly `width`.
void FormatNumberRight(char* buffer, double value, int32_t width);

// Right-aligned fixed-point field of exactly `width` characters with
// `decimals` digits after the decimal character. A value too large for the
// field gives `width` stars, MissingValue `width` blanks.
void FormatFixed(char* buffer, double value, int32_t width, int32_t decimals);
// FormatFixed with the blanks at both ends removed (MissingValue: empty).
void FormatFixedTrimmed(char* buffer, double value, int32_t width, int32_t decimals);

// A whole number right-aligned in `width` characters, always leaving room
// for a sign. Result 1 (positive or zero), -1 (negative), or 0 when the
// digits do not fit, and then the field is all `fill`.
int32_t FormatDigits(double value, int32_t width, char* buffer, char fill);

// Reads a decimal number typed by the user. Every gDecimalChar of the
// buffer is changed to '.' in place first. Leading blanks are skipped and the
// longest number at the front is read; no number gives 0.
double ParseNumber(char* buffer);

}  // namespace zv

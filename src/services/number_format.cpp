#include "services/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

#include "frame/host_records.h"
#include "frame/module_state.h"

namespace zv {
namespace {

// The six significant digits of a non-zero finite |value| and its decimal
// exponent e, so that |value| = 0.d1d2d3d4d5d6 x 10^e. The rounding is the
// runtime's correctly rounded float-to-decimal conversion.
int32_t SixDigits(double magnitude, char digits[6]) {
  char text[32];
  const auto result =
      std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, 5);
  // "d.ddddde+XX"
  digits[0] = text[0];
  std::memcpy(digits + 1, text + 2, 5);
  int32_t exponent = 0;
  const char* e = text + 7;                      // the 'e'
  std::from_chars(e + 2, result.ptr, exponent);  // after the sign
  return (e[1] == '-' ? -exponent : exponent) + 1;
}

// Exact powers of ten, 10^0 to 10^11.
constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11};
// Writes the general form of `value` (no terminator) and returns its length.
int32_t GeneralText(char* out, double value) {
  if (value == kMissingValue || !std::isfinite(value)) return 0;
  char* p = out;
  if (value == 0.0) {
    if (gLeadingZero) *p++ = '0';
    *p++ = gDecimalChar;
    *p++ = '0';
    return static_cast<int32_t>(p - out);
  }
  if (value < 0.0) *p++ = '-';
  char digits[6];
  int32_t e = ShortSixDigits(std::fabs(value), digits);
  if (e == kNoShortDigits) e = SixDigits(std::fabs(value), digits);
  int32_t s = 6;
  while (s > 1 && digits[s - 1] == '0') --s;

  if (e >= -5 && e <= 0) {
    if (gLeadingZero) *p++ = '0';
    *p++ = gDecimalChar;
    for (int32_t i = 0; i < -e; ++i) *p++ = '0';
    std::memcpy(p, digits, static_cast<size_t>(s));
    p += s;
  } else if (e >= 1 && e <= 6) {
    std::memcpy(p, digits, static_cast<size_t>(e));
    p += e;
    *p++ = gDecimalChar;
    if (s > e) {
      std::memcpy(p, digits + e, static_cast<size_t>(s - e));
      p += s - e;
    } else {
      *p++ = '0';
    }
  } else {
    *p++ = digits[0];
    *p++ = gDecimalChar;
    std::memcpy(p, digits + 1, static_cast<size_t>(s - 1));
    p += s - 1;
    *p++ = 'E';
    p = std::to_chars(p, p + 8, e - 1).ptr;
  }
  return static_cast<int32_t>(p - out);
}

void Fill(char* buffer, int32_t width, char c) {
  if (width > 0) std::memset(buffer, c, static_cast<size_t>(width));
  buffer[width > 0 ? width : 0] = '\0';
}

// 10^k for a whole k, exact up to 10^22 and correctly rounded below 1.
double PowerOfTen(int32_t k) {
  double p = 1.0;
  for (int32_t i = 0; i < (k < 0 ? -k : k); ++i) p *= 10.0;
  return k < 0 ? 1.0 / p : p;
}

}  // namespace

// SixDigits without the decimal conversion, for 1e-6 <= magnitude < 1e6:
// q = magnitude x 10^k in one rounded product (10^k exact), with k chosen so
// that q has six places before the point. The product's error is at most
// half a unit in the last place of q (below 1e-10), and rounding is
// monotonic, so when 100000 < q < 999999.5 and q is at least 0.01 from a
// half, the nearest whole number to q is the correctly rounded six digits
// and k fixes the exponent. Any other value (q on 100000 itself after an
// inexact product, or near a half) gives kNoShortDigits for the full
// conversion. Report columns of times and estimates mostly take this path.
int32_t ShortSixDigits(double magnitude, char digits[6]) {
  if (!(magnitude >= 1e-6 && magnitude < 1e6)) return kNoShortDigits;
  int32_t k = 0;
  double q = magnitude;
  while (q < 100000.0) {
    if (++k > 11) return kNoShortDigits;
    q = magnitude * kPowers[k];
  }
  // q == 100000 proves the exponent only when the product was exact, as it
  // is for a whole magnitude times 10^k.
  if (q == 100000.0 && magnitude != std::floor(magnitude)) return kNoShortDigits;
  const double whole = std::floor(q + 0.5);
  const double offset = q - whole;
  if (whole > 999999.0 || offset > 0.49 || offset < -0.49) return kNoShortDigits;
  uint32_t n = static_cast<uint32_t>(whole);
  for (int32_t i = 5; i >= 0; --i) {
    digits[i] = static_cast<char>('0' + n % 10);
    n /= 10;
  }
  return 6 - k;
}

int32_t FormatNumber(char* buffer, double value, int32_t width) {
  char text[kNumberTextSize];
  int32_t length = GeneralText(text, value);
  if (length > width) length = 0;  // an empty text rather than a cut one
  std::memcpy(buffer, text, static_cast<size_t>(length));
  buffer[length] = '\0';
  return length;
}

void FormatNumberLeft(char* buffer, double value, int32_t width) {
  const int32_t length = FormatNumber(buffer, value, width);
  if (width <= length) return;
  std::memset(buffer + length, ' ', static_cast<size_t>(width - length));
  buffer[width] = '\0';
}

void FormatNumberRight(char* buffer, double value, int32_t width) {
  const int32_t length = FormatNumber(buffer, value, width);
  if (width <= length) return;
  const int32_t pad = width - length;
  std::memmove(buffer + pad, buffer, static_cast<size_t>(length));
  std::memset(buffer, ' ', static_cast<size_t>(pad));
  buffer[width] = '\0';
}

int32_t FormatDigits(double value, int32_t width, char* buffer, char fill) {
  if (width <= 0) {
    buffer[0] = '\0';
    return 0;
  }
  if (!std::isfinite(value)) {
    Fill(buffer, width, fill);
    return 0;
  }
  Fill(buffer, width, ' ');
  if (std::fabs(value) < 1.0) {
    buffer[width - 1] = '0';
    return 1;
  }
  // The largest double has 309 digits.
  char digits[320];
  const char* end =
      std::to_chars(digits, digits + sizeof digits, std::fabs(value), std::chars_format::fixed, 0)
          .ptr;
  const int32_t count = static_cast<int32_t>(end - digits);
  if (count + 1 > width) {  // room for the digits and a sign
    Fill(buffer, width, fill);
    return 0;
  }
  std::memcpy(buffer + width - count, digits, static_cast<size_t>(count));
  if (value < 0.0) {
    buffer[width - count - 1] = '-';
    return -1;
  }
  return 1;
}

// A Fortran-style F field: stars when the value is too large for it, the
// digits right-aligned with the decimal character let in, and (with the
// leading-zero setting) zeros in front of a fraction.
void FormatFixed(char* buffer, double value, int32_t width, int32_t decimals) {
  if (width <= 0) {
    buffer[0] = '\0';
    return;
  }
  if (decimals < 0) decimals = 0;
  // MissingValue is tested before the range: with a whole part of six
  // places or fewer, -32768 would otherwise count as too large.
  if (value == kMissingValue) {
    Fill(buffer, width, ' ');
    return;
  }
  const int32_t whole = width - decimals;
  if (value >= PowerOfTen(whole - 1) || value <= -PowerOfTen(whole - 2)) {
    Fill(buffer, width, '*');
    return;
  }
  if (std::fabs(value) <= 1e-12) value = 0.0;
  double scaled = value * PowerOfTen(decimals);
  if (scaled != std::floor(scaled)) scaled = std::floor(scaled + 0.5);

  const int32_t sign = FormatDigits(scaled, width, buffer, '*');
  if (sign == 0) {
    Fill(buffer, width, '*');
    return;
  }
  const bool negative = sign < 0;

  // Let in the decimal character: the part before it moves one place left.
  if (buffer[0] != ' ' || whole < 1 || (negative ? 1 : 0) + decimals + 1 > width) {
    Fill(buffer, width, '*');  // the digits left no room for it
    return;
  }
  std::memmove(buffer, buffer + 1, static_cast<size_t>(whole - 1));
  buffer[whole - 1] = gDecimalChar;

  if (gLeadingZero) {
    for (int32_t i = whole - 2 < 0 ? 0 : whole - 2; i < width; ++i) {
      if (buffer[i] == ' ' || buffer[i] == '-') buffer[i] = '0';
    }
    const int32_t at = whole - 3;
    if (negative && at >= 0 && (at == 0 || buffer[at] == ' ') && buffer[at] != '-') {
      buffer[at] = '-';
    }
  } else {
    // Without the leading zero only the fraction is filled, and a sign that
    // stood in it goes in front of the decimal character.
    for (int32_t i = whole; i < width; ++i) {
      if (buffer[i] == ' ' || buffer[i] == '-') buffer[i] = '0';
    }
    const int32_t at = whole - 2;
    if (negative && at >= 0 && buffer[at] == ' ') buffer[at] = '-';
  }
  // A negative value whose sign found no place would print as positive.
  if (negative && std::memchr(buffer, '-', static_cast<size_t>(width)) == nullptr) {
    Fill(buffer, width, '*');
    return;
  }
  if (buffer[0] == '*') Fill(buffer, width, '*');
  buffer[width] = '\0';
}

// FormatFixedTrimmed for a value that fits its field with room to spare:
// the same rounding of value x 10^decimals to a whole number, whose digits
// are then placed directly instead of being moved about a right-aligned
// field. False, with nothing written, for any other value.
bool ShortFixedTrimmed(char* buffer, double value, int32_t width, int32_t decimals) {
  if (decimals < 0 || decimals > 9 || value == kMissingValue || !(std::fabs(value) < 1e9)) {
    return false;
  }
  if (std::fabs(value) <= 1e-12) value = 0.0;
  double scaled = value * kPowers[decimals];
  if (scaled != std::floor(scaled)) scaled = std::floor(scaled + 0.5);
  const bool negative = scaled <= -1.0;
  char digits[24];
  const char* end =
      std::to_chars(digits, digits + sizeof digits, static_cast<int64_t>(std::fabs(scaled))).ptr;
  const int32_t count = static_cast<int32_t>(end - digits);
  const int32_t wholeDigits = count > decimals ? count - decimals : 0;
  const int32_t leading = wholeDigits == 0 && gLeadingZero ? 1 : 0;
  const int32_t length = (negative ? 1 : 0) + wholeDigits + leading + 1 + decimals;
  // Two places to spare keep clear of every case in which FormatFixed
  // gives stars.
  if (length > width - 2) return false;
  char* p = buffer;
  if (negative) *p++ = '-';
  if (leading) *p++ = '0';
  std::memcpy(p, digits, static_cast<size_t>(wholeDigits));
  p += wholeDigits;
  *p++ = gDecimalChar;
  const int32_t zeros = decimals - (count - wholeDigits);
  std::memset(p, '0', static_cast<size_t>(zeros));
  std::memcpy(p + zeros, digits + wholeDigits, static_cast<size_t>(count - wholeDigits));
  p += decimals;
  *p = '\0';
  return true;
}

void FormatFixedTrimmed(char* buffer, double value, int32_t width, int32_t decimals) {
  if (ShortFixedTrimmed(buffer, value, width, decimals)) return;
  FormatFixed(buffer, value, width, decimals);
  const size_t length = std::strlen(buffer);
  size_t first = 0;
  while (first < length && buffer[first] == ' ') ++first;
  size_t last = length;
  while (last > first && buffer[last - 1] == ' ') --last;
  std::memmove(buffer, buffer + first, last - first);
  buffer[last - first] = '\0';
}

double ParseNumber(char* buffer) {
  for (char* p = buffer; *p != '\0'; ++p) {
    if (*p == gDecimalChar) *p = '.';
  }
  const char* p = buffer;
  while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  if (*p == '+' || *p == '-') return 0.0;  // a second sign: no number
  const char* end = p + std::strlen(p);
  double value = 0.0;
  auto result = std::from_chars(p, end, value, std::chars_format::general);
  if (result.ec == std::errc::result_out_of_range) {
    // Past the range of a double: read it wider and let the conversion give
    // infinity or zero, as the C library's reading does; past even that, the
    // sign of the exponent decides.
    long double wide = 0.0L;
    const auto widened = std::from_chars(p, end, wide, std::chars_format::general);
    if (widened.ec == std::errc()) {
      value = static_cast<double>(wide);
    } else {
      const std::string_view text(p, static_cast<size_t>(result.ptr - p));
      const bool tiny = text.find("e-") != text.npos || text.find("E-") != text.npos;
      value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    }
  } else if (result.ec != std::errc()) {
    value = 0.0;
  }
  return negative ? -value : value;
}

}  // namespace zv

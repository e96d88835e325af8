// Number formatting. Every expectation is worked out by hand from the
// formatting rules: the six significant digits, the exponent e with
// value = 0.d1..d6 x 10^e, then the form chosen by e. The fast paths are
// checked against the C library and the general path on random values.
#include "services/number_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "frame/host_records.h"
#include "frame/module_state.h"

namespace {

using zv::kMissingValue;

// Sets the two locale values for one test and restores them after.
class Locale {
 public:
  Locale(int32_t leadingZero, char decimal)
      : oldZero_(zv::gLeadingZero), oldDecimal_(zv::gDecimalChar) {
    zv::gLeadingZero = leadingZero;
    zv::gDecimalChar = decimal;
  }
  ~Locale() {
    zv::gLeadingZero = oldZero_;
    zv::gDecimalChar = oldDecimal_;
  }

 private:
  int32_t oldZero_;
  char oldDecimal_;
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

std::string Number(double v, int32_t width) {
  char buffer[64];
  std::memset(buffer, 'x', sizeof buffer);
  const int32_t length = zv::FormatNumber(buffer, v, width);
  EXPECT_EQ(static_cast<size_t>(length), std::strlen(buffer));
  return buffer;
}

std::string Fixed(double v, int32_t width, int32_t decimals) {
  char buffer[64];
  std::memset(buffer, 'x', sizeof buffer);
  zv::FormatFixed(buffer, v, width, decimals);
  return buffer;
}

struct NumberRow {
  int line;
  double value;
  int32_t width;
  const char* withZero;     // gLeadingZero set
  const char* withoutZero;  // gLeadingZero clear
};

TEST(FormatNumber, SixSignificantDigitsAcrossMagnitudes) {
  constexpr NumberRow kRows[] = {
      // e = 0 .. -5: point, -e zeros, the digits.
      {__LINE__, 0.5, 16, "0.5", ".5"},
      {__LINE__, -0.5, 16, "-0.5", "-.5"},
      {__LINE__, 0.05, 16, "0.05", ".05"},
      {__LINE__, 2.0 / 3.0, 16, "0.666667", ".666667"},
      {__LINE__, 0.1 + 0.2, 16, "0.3", ".3"},  // 0.30000000000000004
      {__LINE__, 0.0012345678, 16, "0.00123457", ".00123457"},
      {__LINE__, 0.00001, 16, "0.00001", ".00001"},     // e = -4
      {__LINE__, 0.000001, 16, "0.000001", ".000001"},  // e = -5
      {__LINE__, 0.000001234, 16, "0.000001234", ".000001234"},
      {__LINE__, -0.00000123456789, 16, "-0.00000123457", "-.00000123457"},
      // e = 1 .. 6: e digits, point, the rest or one zero.
      {__LINE__, 1.0, 16, "1.0", "1.0"},
      {__LINE__, -1.0, 16, "-1.0", "-1.0"},
      {__LINE__, 3.14159265, 16, "3.14159", "3.14159"},
      {__LINE__, 12.5, 16, "12.5", "12.5"},
      {__LINE__, 100.0, 16, "100.0", "100.0"},
      {__LINE__, 123.4564, 16, "123.456", "123.456"},
      {__LINE__, 1234.5678, 16, "1234.57", "1234.57"},
      {__LINE__, 123456.0, 16, "123456.0", "123456.0"},
      {__LINE__, 999999.0, 16, "999999.0", "999999.0"},
      {__LINE__, -65536.7, 16, "-65536.7", "-65536.7"},
      // Otherwise scientific: d1, point, d2..ds, 'E', e - 1.
      {__LINE__, 999999.6, 16, "1.E6", "1.E6"},  // rounds up to 0.1 x 10^7
      {__LINE__, 1234567.0, 16, "1.23457E6", "1.23457E6"},
      {__LINE__, 10000000.0, 16, "1.E7", "1.E7"},
      {__LINE__, -123456789.0, 16, "-1.23457E8", "-1.23457E8"},
      {__LINE__, 0.0000001234, 16, "1.234E-7", "1.234E-7"},  // e = -6
      {__LINE__, 0.0000001, 16, "1.E-7", "1.E-7"},
      {__LINE__, 1e100, 16, "1.E100", "1.E100"},
      {__LINE__, -1.5e-300, 16, "-1.5E-300", "-1.5E-300"},
      // Zero, and a negative zero, which is not negative.
      {__LINE__, 0.0, 16, "0.0", ".0"},
      {__LINE__, -0.0, 16, "0.0", ".0"},
      // Too wide for the field: empty, never cut.
      {__LINE__, 1234.5678, 6, "", ""},
      {__LINE__, 1234.5678, 7, "1234.57", "1234.57"},
      {__LINE__, 12.5, 3, "", ""},
      {__LINE__, 0.5, 2, "", ".5"},
      {__LINE__, 0.0, 2, "", ".0"},
      {__LINE__, 1.0, 0, "", ""},
      // No value: empty at any width.
      {__LINE__, kMissingValue, 16, "", ""},
      {__LINE__, kMissingValue, 0, "", ""},
      {__LINE__, kNaN, 16, "", ""},
      {__LINE__, -kInf, 16, "", ""},
  };
  for (const NumberRow& r : kRows) {
    SCOPED_TRACE(r.line);
    {
      Locale locale(1, '.');
      EXPECT_EQ(Number(r.value, r.width), r.withZero);
    }
    Locale locale(0, '.');
    EXPECT_EQ(Number(r.value, r.width), r.withoutZero);
  }
}

TEST(FormatNumber, DecimalCommaInEveryForm) {
  Locale locale(1, ',');
  EXPECT_EQ(Number(12.5, 16), "12,5");
  EXPECT_EQ(Number(0.05, 16), "0,05");
  EXPECT_EQ(Number(0.0, 16), "0,0");
  EXPECT_EQ(Number(1234567.0, 16), "1,23457E6");
  EXPECT_EQ(Number(0.0000001234, 16), "1,234E-7");
}

TEST(FormatNumber, PaddedForms) {
  Locale locale(1, '.');
  char buffer[32];
  zv::FormatNumberLeft(buffer, kMissingValue, 5);
  EXPECT_STREQ(buffer, "     ");
  zv::FormatNumberLeft(buffer, 12.5, 8);
  EXPECT_STREQ(buffer, "12.5    ");
  zv::FormatNumberRight(buffer, 12.5, 8);
  EXPECT_STREQ(buffer, "    12.5");
  zv::FormatNumberRight(buffer, 1234.5678, 6);  // does not fit: all blanks
  EXPECT_STREQ(buffer, "      ");
  zv::FormatNumberRight(buffer, -0.5, 4);  // exactly fits
  EXPECT_STREQ(buffer, "-0.5");
}

struct FixedRow {
  int line;
  double value;
  int32_t width, decimals;
  const char* withZero;
  const char* withoutZero;
};

TEST(FormatFixed, FieldsStarsAndBlanks) {
  constexpr FixedRow kRows[] = {
      {__LINE__, 12.346, 8, 2, "   12.35", "   12.35"},
      {__LINE__, -12.346, 8, 2, "  -12.35", "  -12.35"},
      {__LINE__, -1.5, 8, 2, "   -1.50", "   -1.50"},
      {__LINE__, 0.05, 8, 2, "    0.05", "     .05"},
      {__LINE__, -0.05, 8, 2, "   -0.05", "    -.05"},
      {__LINE__, 0.5, 8, 2, "    0.50", "     .50"},
      {__LINE__, -0.5, 8, 2, "   -0.50", "    -.50"},
      {__LINE__, 0.0, 8, 2, "    0.00", "     .00"},
      // Magnitudes at most 1e-12 are 0; a value that rounds to 0 loses its sign.
      {__LINE__, -1e-13, 8, 2, "    0.00", "     .00"},
      {__LINE__, -0.001, 8, 2, "    0.00", "     .00"},
      // 1.005 is 1.00499999999999989... in binary, and x 100 gives 100.49999999999999.
      {__LINE__, 1.005, 8, 2, "    1.00", "    1.00"},
      {__LINE__, 0.5, 15, 4, "         0.5000", "          .5000"},
      {__LINE__, 123456789.123, 15, 4, " 123456789.1230", " 123456789.1230"},
      // Whole part: below 10^(whole - 1), above -10^(whole - 2).
      {__LINE__, 123456.0, 6, 2, "******", "******"},
      {__LINE__, 99999.99, 8, 2, "99999.99", "99999.99"},
      {__LINE__, 100000.0, 8, 2, "********", "********"},
      {__LINE__, 99999.996, 8, 2, "********", "********"},  // rounds to 8 digits
      {__LINE__, -9999.99, 8, 2, "-9999.99", "-9999.99"},
      {__LINE__, -10000.0, 8, 2, "********", "********"},
      {__LINE__, -9999.996, 8, 2, "********", "********"},  // -1000000: no room for the point
      {__LINE__, 0.5, 4, 2, "0.50", " .50"},
      {__LINE__, -0.5, 5, 2, "-0.50", " -.50"},
      {__LINE__, -0.5, 4, 2, "****", "-.50"},  // "-0.50" does not fit
      {__LINE__, 0.05, 3, 2, ".05", ".05"},
      // No decimals: the decimal character still ends the field.
      {__LINE__, 2.5, 4, 0, "  3.", "  3."},
      {__LINE__, -12.0, 5, 0, " -12.", " -12."},
      // No value: blanks, at any width.
      {__LINE__, kMissingValue, 8, 2, "        ", "        "},
      {__LINE__, kMissingValue, 15, 4, "               ", "               "},
      {__LINE__, kMissingValue, 3, 0, "   ", "   "},
      {__LINE__, kNaN, 6, 2, "******", "******"},
      {__LINE__, kInf, 6, 2, "******", "******"},
      {__LINE__, -kInf, 6, 2, "******", "******"},
      {__LINE__, 1.0, 0, 0, "", ""},
  };
  for (const FixedRow& r : kRows) {
    SCOPED_TRACE(r.line);
    {
      Locale locale(1, '.');
      EXPECT_EQ(Fixed(r.value, r.width, r.decimals), r.withZero);
    }
    Locale locale(0, '.');
    EXPECT_EQ(Fixed(r.value, r.width, r.decimals), r.withoutZero);
  }
}

TEST(FormatFixed, DecimalCommaAndTrimmedForm) {
  Locale locale(1, ',');
  EXPECT_EQ(Fixed(5.5, 5, 2), " 5,50");
  EXPECT_EQ(Fixed(-0.25, 8, 3), "  -0,250");
  char buffer[32];
  zv::FormatFixedTrimmed(buffer, 12.346, 15, 4);
  EXPECT_STREQ(buffer, "12,3460");
  zv::FormatFixedTrimmed(buffer, kMissingValue, 11, 6);
  EXPECT_STREQ(buffer, "");
  zv::FormatFixedTrimmed(buffer, 1e9, 8, 2);
  EXPECT_STREQ(buffer, "********");
}

// The short path of the six digits against the C library's correctly rounded
// "%.5e", on random values of every kind it may see: short decimals as
// report columns hold them, values a hair from a rounding half, and values
// spread over its whole range. It must agree whenever it answers, and it
// must answer for nearly every short decimal.
TEST(FormatNumber, ShortDigitsAgreeWithTheCLibrary) {
  std::mt19937_64 random(2024);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int64_t shortDecimals = 0, answered = 0;
  for (int32_t i = 0; i < 3'000'000; ++i) {
    double value = 0.0;
    const int32_t kind = i % 3;
    if (kind == 0) {  // up to six digits and up to eleven decimals
      value = static_cast<double>(random() % 1'000'000) / std::pow(10.0, random() % 12);
    } else if (kind == 1) {  // a rounding half, nudged by a few units in the last place
      value =
          (static_cast<double>(random() % 900'000 + 100'000) + 0.5) / std::pow(10.0, random() % 12);
      value = std::nextafter(value, (random() & 1) != 0 ? 0.0 : 1e9);
    } else {
      value = std::pow(10.0, -6.0 + 12.0 * unit(random));
    }
    char digits[6];
    const int32_t e = zv::ShortSixDigits(value, digits);
    if (kind == 0 && value >= 1e-6) ++shortDecimals;
    if (e == zv::kNoShortDigits) continue;
    if (kind == 0) ++answered;
    char expected[32];
    std::snprintf(expected, sizeof expected, "%.5e", value);
    const std::string mantissa = std::string(1, expected[0]) + std::string(expected + 2, 5);
    ASSERT_EQ(std::string(digits, 6), mantissa) << value;
    ASSERT_EQ(e, std::atoi(expected + 8) + 1) << value;
  }
  EXPECT_GT(answered, shortDecimals * 99 / 100);
}

// The trimmed fixed form, which places short values directly, against the
// field it trims, in both locale settings and at widths down to the stars.
TEST(FormatFixed, TrimmedAgreesWithTheField) {
  std::mt19937_64 random(99);
  for (int32_t leadingZero : {0, 1}) {
    Locale locale(leadingZero, ',');
    for (int32_t i = 0; i < 1'000'000; ++i) {
      const double value = (static_cast<double>(random() % 2'000'001) - 1e6) /
                           std::pow(10.0, random() % 9) * (i % 50 == 0 ? 1e6 : 1.0);
      const int32_t width = 4 + static_cast<int32_t>(random() % 13);
      const int32_t decimals = static_cast<int32_t>(random() % 7);
      std::string field = Fixed(value, width, decimals);
      field.erase(0, field.find_first_not_of(' '));
      field.erase(field.find_last_not_of(' ') + 1);
      char trimmed[64];
      zv::FormatFixedTrimmed(trimmed, value, width, decimals);
      ASSERT_EQ(trimmed, field) << value << " " << width << " " << decimals;
    }
  }
}

TEST(FormatDigits, RightAlignedWithRoomForASign) {
  struct Row {
    int line;
    double value;
    int32_t width;
    char fill;
    const char* text;
    int32_t result;
  };
  constexpr Row kRows[] = {
      {__LINE__, 12.0, 5, '*', "   12", 1},
      {__LINE__, -12.0, 5, '*', "  -12", -1},
      {__LINE__, 1234.0, 5, '*', " 1234", 1},
      {__LINE__, -1234.0, 5, '*', "-1234", -1},
      {__LINE__, 12345.0, 5, '*', "*****", 0},  // five digits leave no room for a sign
      {__LINE__, 12345.0, 5, '#', "#####", 0},
      {__LINE__, 0.4, 5, '*', "    0", 1},
      {__LINE__, -0.4, 3, '*', "  0", 1},
      {__LINE__, 1e20, 25, '*', "    100000000000000000000", 1},
      {__LINE__, kNaN, 4, '*', "****", 0},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    char buffer[32];
    EXPECT_EQ(zv::FormatDigits(r.value, r.width, buffer, r.fill), r.result);
    EXPECT_STREQ(buffer, r.text);
  }
}

TEST(ParseNumber, ReadsWhatTheUserTyped) {
  struct Row {
    int line;
    char decimal;
    const char* text;
    double value;
    const char* after;  // the buffer after the call
  };
  const Row kRows[] = {
      {__LINE__, '.', "12.5", 12.5, "12.5"},
      {__LINE__, '.', "  -3.25e2", -325.0, "  -3.25e2"},
      {__LINE__, '.', "+7", 7.0, "+7"},
      {__LINE__, '.', "12abc", 12.0, "12abc"},
      {__LINE__, '.', "1,5", 1.0, "1,5"},
      {__LINE__, ',', "1,5", 1.5, "1.5"},
      {__LINE__, ',', "-0,25", -0.25, "-0.25"},
      {__LINE__, '.', "abc", 0.0, "abc"},
      {__LINE__, '.', "", 0.0, ""},
      {__LINE__, '.', "--5", 0.0, "--5"},
      {__LINE__, '.', "1e999", kInf, "1e999"},
      {__LINE__, '.', "-1e999", -kInf, "-1e999"},
      {__LINE__, '.', "1e-999", 0.0, "1e-999"},
      {__LINE__, '.', "1e-99999", 0.0, "1e-99999"},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    Locale locale(1, r.decimal);
    char buffer[32];
    std::strcpy(buffer, r.text);
    EXPECT_EQ(zv::ParseNumber(buffer), r.value);
    EXPECT_STREQ(buffer, r.after);
  }
}

}  // namespace

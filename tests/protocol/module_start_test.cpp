#include "protocol/module_start.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "frame/module_state.h"

namespace {

struct DateRow {
  int line;
  const char* format;
  const char* order;      // gDateOrder, four characters
  const char* monthYear;  // gMonthYearOrder, three characters
};

TEST(ShortDateFormat, ParsesFieldsSeparatorAndMonthYearOrder) {
  constexpr DateRow kRows[] = {
      {__LINE__, "dd/MM/yyyy", "DMY/", "MY/"},
      {__LINE__, "yy-M-d", "ymd-", "ym-"},
      {__LINE__, "M/D/YY", "mdy/", "my/"},
      {__LINE__, "d.M.yyy", "dmY.", "mY."},
      // One separator, no third field: month, day, year with '/'.
      {__LINE__, "M/D", "mdy/", "my/"},
      // A field left blank falls back as well.
      {__LINE__, "M//YY", "mdy/", "my/"},
      {__LINE__, "", "mdy/", "my/"},
  };
  for (const DateRow& r : kRows) {
    SCOPED_TRACE(r.line);
    zv::ParseShortDate(r.format);
    EXPECT_EQ(std::string(zv::gDateOrder, 4), r.order);
    EXPECT_EQ(std::string(zv::gMonthYearOrder, 3), r.monthYear);
  }
  zv::ResetLocaleDefaults();
}

TEST(ModuleStart, ReadsTheIntlSectionOfTheProfile) {
  const std::string path =
      ::testing::TempDir() + "zivara_profile_" + std::to_string(getpid()) + ".ini";
  FILE* file = std::fopen(path.c_str(), "w");
  ASSERT_NE(file, nullptr);
  std::fputs("[intl]\niLzero=0\nsDecimal=,\nsShortdate=dd.MM.yyyy\niTLZero=1\nsTime=.\n", file);
  std::fclose(file);
  setenv("ZIVARA_PROFILE", path.c_str(), 1);
  zv::ModuleStart();
  EXPECT_EQ(zv::gLeadingZero, 0);
  EXPECT_EQ(zv::gDecimalChar, ',');
  EXPECT_EQ(std::string(zv::gDateOrder, 4), "DMY.");
  EXPECT_EQ(zv::gTimeLeadingZero, 1);
  EXPECT_EQ(zv::gTimeSeparator, '.');
  EXPECT_STREQ(zv::gAppTitle, "Zivara Suite");
  zv::ModuleStop();

  // Without a profile every key takes its default.
  setenv("ZIVARA_PROFILE", (path + ".absent").c_str(), 1);
  zv::ModuleStart();
  EXPECT_EQ(zv::gLeadingZero, 1);
  EXPECT_EQ(zv::gDecimalChar, '.');
  EXPECT_EQ(std::string(zv::gDateOrder, 4), "mdy/");
  EXPECT_EQ(zv::gTimeLeadingZero, 0);
  EXPECT_EQ(zv::gTimeSeparator, ':');
  zv::ModuleStop();
  unsetenv("ZIVARA_PROFILE");
  zv::ResetLocaleDefaults();
}

}  // namespace

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "zvwin/zvwin.h"

namespace {

class ProfileTest : public testing::Test {
 protected:
  void SetUp() override {
    // One file per process: CTest runs the cases of this file side by side.
    path_ = std::filesystem::path(testing::TempDir()) /
            ("zvwin_profile_test_" + std::to_string(getpid()) + ".ini");
    std::ofstream(path_) << "; the system's settings\n"
                            "[Windows]\n"
                            "iLzero=7\n"
                            "[intl]\r\n"
                            "  iLZERO = 0 \r\n"
                            "sDecimal=,\n"
                            "; iTLZero=1\n"
                            "sShortDate=dd/MM/yyyy\n"
                            "sTime=\"::\"\n"
                            "iCount=12abc\n"
                            "iWord=abc\n"
                            "iNegative=-3\n"
                            "iEmpty=\n"
                            "iLzero=5\n"
                            "not a key line\n"
                            "[Other\n"
                            "iTLZero=1\n";
    setenv("ZIVARA_PROFILE", path_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("ZIVARA_PROFILE");
    std::filesystem::remove(path_);
  }
  std::filesystem::path path_;
};

TEST_F(ProfileTest, IntegersReadTheLeadingDigits) {
  struct Row {
    int line;
    const char* section;
    const char* key;
    int32_t expected;
  };
  const Row rows[] = {
      {__LINE__, "Intl", "iLzero", 0},  // names compare without case; first wins
      {__LINE__, "INTL", "ilzero", 0},
      {__LINE__, "Windows", "iLzero", 7},  // sections are kept apart
      {__LINE__, "Intl", "iCount", 12},
      {__LINE__, "Intl", "iWord", 0},
      {__LINE__, "Intl", "iNegative", -3},
      {__LINE__, "Intl", "iEmpty", 99},   // an empty value gives the default
      {__LINE__, "Intl", "iTLZero", 99},  // commented out; a broken header does
                                          // not open a section
      {__LINE__, "Intl", "missing", 99},
      {__LINE__, "Nowhere", "iLzero", 99},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(WinGetProfileInt(row.section, row.key, 99), row.expected);
  }
}

TEST_F(ProfileTest, TextsAreCutToTheBuffer) {
  char buffer[20];
  EXPECT_EQ(WinGetProfileString("intl", "sdecimal", ".", buffer, 10), 1u);
  EXPECT_STREQ(buffer, ",");
  EXPECT_EQ(WinGetProfileString("Intl", "sShortDate", "M/D/YY", buffer, 20), 10u);
  EXPECT_STREQ(buffer, "dd/MM/yyyy");
  EXPECT_EQ(WinGetProfileString("Intl", "sShortDate", "M/D/YY", buffer, 5), 4u);
  EXPECT_STREQ(buffer, "dd/M");
  EXPECT_EQ(WinGetProfileString("Intl", "sTime", ":", buffer, 10), 2u);
  EXPECT_STREQ(buffer, "::");
  EXPECT_EQ(WinGetProfileString("Intl", "sList", ";", buffer, 10), 1u);
  EXPECT_STREQ(buffer, ";");
}

}  // namespace

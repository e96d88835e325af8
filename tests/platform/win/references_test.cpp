#include <gtest/gtest.h>

#include <cstring>

#include "zvwin/zvwin.h"

namespace {

TEST(References, RegisterResolveUnregister) {
  int a = 1, b = 2;
  uint32_t ra = WinRegister(&a);
  uint32_t rb = WinRegister(&b);
  EXPECT_NE(ra, 0u);
  EXPECT_NE(ra, rb);
  EXPECT_EQ(WinResolve(ra), &a);
  EXPECT_EQ(WinResolve(rb), &b);
  EXPECT_EQ(WinRegister(nullptr), 0u);
  EXPECT_EQ(WinResolve(0), nullptr);
  WinUnregister(ra);
  EXPECT_EQ(WinResolve(ra), nullptr);
  EXPECT_EQ(WinResolve(rb), &b);
  EXPECT_NE(WinRegister(&a), ra) << "a reference value came back after its release";
  WinUnregister(rb);
}

TEST(CountedText, LengthStandsEightBytesBeforeTheCharacters) {
  struct Row {
    int line;
    std::string text;
  };
  const Row rows[] = {
      {__LINE__, ""},
      {__LINE__, "Kaplan"},
      {__LINE__, std::string("a\0b", 3)},  // the length counts, not the terminator
      {__LINE__, std::string(300, 'x')},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    TextRef ref = WinTextCreate(row.text);
    ASSERT_NE(ref, 0u);
    const char* chars = static_cast<const char*>(WinResolve(ref));
    ASSERT_NE(chars, nullptr);
    int32_t length = -1;
    std::memcpy(&length, chars - 8, sizeof length);
    EXPECT_EQ(length, static_cast<int32_t>(row.text.size()));
    EXPECT_EQ(std::string(chars, row.text.size()), row.text);
    EXPECT_EQ(chars[row.text.size()], '\0');
    WinTextFree(ref);
    EXPECT_EQ(WinResolve(ref), nullptr);
  }
}

}  // namespace

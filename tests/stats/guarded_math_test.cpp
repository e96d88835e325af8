// The guarded elementary functions: each guard's boundary, on both sides.
#include "stats/guarded_math.h"

#include <gtest/gtest.h>

namespace zv {
namespace {

TEST(GuardedMath, RaisesOutsideTheDomain) {
  EXPECT_THROW(GuardedPow(-8, 1.0 / 3), SilentAbort);
  EXPECT_THROW(GuardedSqrt(-1e-300), SilentAbort);
  EXPECT_THROW(GuardedExp(201), SilentAbort);
  EXPECT_THROW(GuardedLog(0), SilentAbort);
  EXPECT_THROW(GuardedLog(-1), SilentAbort);
  EXPECT_THROW(GuardedLog10(0), SilentAbort);
}

TEST(GuardedMath, BoundariesThatPass) {
  EXPECT_EQ(GuardedPow(-8, 3), -512.0);  // a whole exponent may take a negative base
  EXPECT_EQ(GuardedPow(-2, -2), 0.25);
  EXPECT_EQ(GuardedSqrt(0), 0.0);
  EXPECT_GT(GuardedExp(200), 7e86);
  EXPECT_GT(GuardedExp(-200), 0.0);
  EXPECT_EQ(GuardedExp(-201), 0.0);  // an exact zero below -200, no exception
  EXPECT_EQ(GuardedExp(-500), 0.0);
  EXPECT_EQ(GuardedLog10(1000), 3.0);
}

}  // namespace
}  // namespace zv

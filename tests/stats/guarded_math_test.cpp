// The guarded elementary functions: each guard's boundary, on both sides, and
// the promise that no NaN comes out.
#include "stats/guarded_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zv {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(GuardedMath, RaisesOutsideTheDomain) {
  EXPECT_THROW(GuardedPow(-8, 1.0 / 3), SilentAbort);
  EXPECT_THROW(GuardedSqrt(-1e-300), SilentAbort);
  EXPECT_THROW(GuardedExp(201), SilentAbort);
  EXPECT_THROW(GuardedLog(0), SilentAbort);
  EXPECT_THROW(GuardedLog(-1), SilentAbort);
  EXPECT_THROW(GuardedLog10(0), SilentAbort);
}

// No NaN comes out: a NaN argument is refused by every guard. An infinity
// is not, and gives an infinite result.
TEST(GuardedMath, NaNIsRefusedAndInfinityPassesThrough) {
  EXPECT_THROW(GuardedSqrt(kNaN), SilentAbort);
  EXPECT_THROW(GuardedExp(kNaN), SilentAbort);
  EXPECT_THROW(GuardedLog(kNaN), SilentAbort);
  EXPECT_THROW(GuardedLog10(kNaN), SilentAbort);
  EXPECT_THROW(GuardedPow(kNaN, 2), SilentAbort);
  EXPECT_THROW(GuardedPow(kNaN, 0), SilentAbort);  // the plain power would give 1
  EXPECT_THROW(GuardedPow(1, kNaN), SilentAbort);  // and here too
  EXPECT_EQ(GuardedSqrt(kInf), kInf);
  EXPECT_EQ(GuardedLog(kInf), kInf);
  EXPECT_EQ(GuardedExp(-kInf), 0.0);
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

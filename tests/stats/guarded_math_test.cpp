// The guarded elementary functions: the rule of each guard, and the plain
// function everywhere else.
#include "stats/guarded_math.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zv {
namespace {

TEST(GuardedMath, RaisesOutsideTheDomain) {
  EXPECT_THROW(GuardedPow(-8, 1.0 / 3), SilentAbort);
  EXPECT_THROW(GuardedPow(-2, 0.5), SilentAbort);
  EXPECT_THROW(GuardedSqrt(-1e-300), SilentAbort);
  EXPECT_THROW(GuardedExp(201), SilentAbort);
  EXPECT_THROW(GuardedLog(0), SilentAbort);
  EXPECT_THROW(GuardedLog(-1), SilentAbort);
  EXPECT_THROW(GuardedLog10(0), SilentAbort);
  EXPECT_THROW(GuardedLog10(-5), SilentAbort);
}

TEST(GuardedMath, PlainFunctionInsideTheDomain) {
  EXPECT_EQ(GuardedPow(-8, 3), -512.0);
  EXPECT_EQ(GuardedPow(-2, -2), 0.25);
  EXPECT_EQ(GuardedPow(0, 0.5), 0.0);
  EXPECT_EQ(GuardedSqrt(0), 0.0);
  EXPECT_EQ(GuardedSqrt(2), std::sqrt(2.0));
  EXPECT_EQ(GuardedExp(200), std::exp(200.0));
  EXPECT_EQ(GuardedExp(-200), std::exp(-200.0));
  EXPECT_EQ(GuardedLog(10), std::log(10.0));
  EXPECT_EQ(GuardedLog10(1000), 3.0);
}

TEST(GuardedMath, ExpBelowMinus200IsExactZero) {
  EXPECT_EQ(GuardedExp(-201), 0.0);
  EXPECT_EQ(GuardedExp(-500), 0.0);
  EXPECT_GT(GuardedExp(-200), 0.0);
}

}  // namespace
}  // namespace zv

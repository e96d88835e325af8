#include "stats/guarded_math.h"

#include <cmath>

namespace zv {

// Each guard is written so that a NaN fails it, since every comparison with
// a NaN is false.

double GuardedPow(double x, double y) {
  if (x < 0 && y != std::trunc(y)) throw SilentAbort{};
  if (std::isnan(x) || std::isnan(y)) throw SilentAbort{};
  return std::pow(x, y);
}

double GuardedSqrt(double x) {
  if (!(x >= 0)) throw SilentAbort{};
  return std::sqrt(x);
}

// Below -200 the result is taken as an exact zero, so that tails far out
// vanish cleanly; above 200 the value would overflow later arithmetic.
double GuardedExp(double x) {
  if (x < -200) return 0.0;
  if (!(x <= 200)) throw SilentAbort{};
  return std::exp(x);
}

double GuardedLog(double x) {
  if (!(x > 0)) throw SilentAbort{};
  return std::log(x);
}

double GuardedLog10(double x) {
  if (!(x > 0)) throw SilentAbort{};
  return std::log10(x);
}

}  // namespace zv

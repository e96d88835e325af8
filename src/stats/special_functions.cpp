#include "stats/special_functions.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/missing_value.h"

namespace zv {

namespace {

// Arguments that are not numbers are outside every function's domain; a
// result that overflows is outside the range the printed values can hold.
constexpr double kInfinity = std::numeric_limits<double>::infinity();

void RequireNumber(double x) {
  if (std::isnan(x)) throw SilentAbort{};
}
double RequireFinite(double x) {
  if (!std::isfinite(x)) throw SilentAbort{};
  return x;
}

// The peeled sum of IncompleteBeta adds one term per whole unit of b (four
// logarithms each), and a beta quantile calls it up to 32 times: past this
// many terms the call raises instead of running for seconds. The t and F
// paths stay below 501; only a fitted beta with a shape above 2e4 reaches it.
constexpr double kMaxPeeledTerms = 2e4;

// pi / 2 to the eight decimals Hill's algorithm 396 uses.
constexpr double kHalfPi8 = 1.57079633;

// One regula falsi on f(x) = p - F(x) between two starting points, shared by
// the chi-square and beta quantiles. The two points sit in slots 0 and 1; each
// pass replaces the slot whose f has the sign of the new one. It stops when
// the new point moves less than `step_tolerance` from the last replaced slot,
// when the pass count exceeds `max_passes` (returning the last trial point,
// never a failure), or when |f| <= `f_tolerance`.
template <typename Residual>
double RegulaFalsi(double x0, double f0, double x1, double f1, double step_tolerance,
                   int max_passes, double f_tolerance, Residual residual) {
  double x[2] = {x0, x1};
  double f[2] = {f0, f1};
  int last = 0;
  int passes = 0;
  double xn = x0;
  for (;;) {
    xn = x[1] - f[1] / ((f[0] - f[1]) / (x[0] - x[1]));
    if (std::fabs(x[last] - xn) < step_tolerance) break;
    if (++passes > max_passes) break;
    const double fn = residual(xn);
    last = fn * f[0] > 0 ? 0 : 1;
    x[last] = xn;
    f[last] = fn;
    if (std::fabs(fn) <= f_tolerance) break;
  }
  return xn;
}

}  // namespace

// Lower-tail normal probability by Abramowitz and Stegun 26.2.17, with the
// coefficients pre-multiplied by 1/sqrt(2 pi), rounded to ten digits, and
// 0.231642 for p. The rounding costs accuracy: measured absolute error up to
// 2.9e-6 (next to z = 0) and 1.5e-7 at 1.96, against 7.5e-8 for the textbook
// form. Kept as is because the reports print exactly these values. The
// exponent is held at -200 so that far tails stay numbers.
double NormalCdf(double z) {
  RequireNumber(z);
  if (z == 0) return 0.5;
  const double e = GuardedExp(std::max(-0.5 * z * z, -200.0));
  const double u = 1 + 0.231642 * std::fabs(z);
  const double u2 = u * u;
  const double u3 = u2 * u;
  const double u4 = u3 * u;
  const double u5 = u4 * u;
  const double q = e * (0.1274147063 / u - 0.1422482683 / u2 + 0.7107071942 / u3 -
                        0.7265771069 / u4 + 0.5307005743 / u5);
  return z > 0 ? (0.5 - q) + 0.5 : -(0.5 - q) + 0.5;
}

double NormalCdfAt(double x, double mean, double sd) {
  return NormalCdf((x - mean) / sd);
}

// Normal quantile by the rational approximation of Odeh and Evans (Applied
// Statistics AS 70, 1974) with its coefficients rounded to about six digits
// (0.342241 where the published value is 0.342242). Measured absolute error
// up to about 1.5e-4 in z.
double NormalQuantile(double p) {
  RequireNumber(p);
  if (p == 1) return kNormalQuantileInfinity;
  if (p == 0) return -kNormalQuantileInfinity;
  const double m = std::min(p, 1 - p);
  const double x = GuardedSqrt(-2 * GuardedLog(m));
  if (p == 0.5) return 0.0;
  const double numerator = (((0.000045 * x + 0.020423) * x + 0.342241) * x + 1) * x + 0.322232;
  const double denominator =
      (((0.003856 * x + 0.103538) * x + 0.531103) * x + 0.588582) * x + 0.099348;
  const double z = x - numerator / denominator;
  return p < 0.5 ? -z : z;
}

double NormalQuantileAt(double p, double mean, double sd) {
  return NormalQuantile(p) * sd + mean;
}

// Student's t through the incomplete beta ratio; the normal above 1000
// degrees of freedom.
double StudentCdf(double t, double df) {
  RequireNumber(t);
  if (!(df >= 0)) throw SilentAbort{};
  if (df > 1000) return NormalCdf(t);
  const double w = df / (t * t + df);
  const double c = 1 - 0.5 * IncompleteBeta(w, df / 2, 0.5);
  return t >= 0 ? c : 1 - c;
}

// Student's t quantile by Hill's algorithm 396 (Communications of the ACM,
// 1970) with pi / 2 to eight decimals; exact closed forms for 1 and 2 degrees
// of freedom, the normal quantile above 1000. Its accuracy follows that of
// NormalQuantile in the tail branch. At p = 1 and p = 0 (and wherever the
// closed forms overflow) it gives the reserved infinities of NormalQuantile.
double StudentQuantile(double p, double df) {
  RequireNumber(p);
  RequireNumber(df);
  if (df == 0) return kMissingValue;
  if (df > 1000) return NormalQuantile(p);
  if (p < 0 || p > 1 || df < 0) throw SilentAbort{};
  bool negate = false;
  if (p < 0.5) {
    p = 1 - p;
    negate = true;
  }
  const double P = 2 * (1 - p);
  double t;
  if (df == 1) {
    t = std::cos(kHalfPi8 * P) / std::sin(kHalfPi8 * P);
  } else if (df == 2) {
    t = GuardedSqrt(2 / ((2 - P) * P) - 2);
  } else {
    const double a = 1 / (df - 0.5);
    const double b = 48 / (a * a);
    double c = ((20700 * a / b - 98) * a - 16) * a + 96.36;
    const double d = ((94.5 / (b + c) - 3) / b + 1) * GuardedSqrt(kHalfPi8 * a) * df;
    double x = d * P;
    double y = GuardedPow(x, 2 / df);
    if (y > a + 0.05) {
      // Tail: start from the normal deviate and correct by an asymptotic series.
      x = NormalQuantile(0.5 * P);
      y = x * x;
      if (df < 5) c = c + 0.3 * (df - 4.5) * (x + 0.6);
      c = (((0.05 * d * x - 5) * x - 7) * x - 2) * x + b + c;
      y = (((((0.4 * y + 6.3) * y + 36) * y + 94.5) / c - y - 3) / b + 1) * x;
      y = a * y * y;
      y = y > 0.002 ? GuardedExp(y) - 1 : (0.5 * y + 1) * y;
    } else {
      // clang-format off
      y = ((1 / (((df + 6) / (df * y) - 0.089 * d - 0.822) * (df + 2) * 3) + 0.5 / (df + 4)) * y -
           1) * (df + 1) / (df + 2) +
          1 / y;
      // clang-format on
    }
    t = GuardedSqrt(df * y);
  }
  if (std::isinf(t)) t = kNormalQuantileInfinity;
  RequireFinite(t);
  return negate ? -t : t;
}

// Gamma function by the polynomial of Abramowitz and Stegun 6.1.36 on [1, 2]
// (absolute error about 3e-7), the recurrence below 1 and exp(LogGamma) above
// 2. Negative arguments come from the series of ChiSquareCdf and are never
// whole numbers there; the poles at 0 and the negative whole numbers give
// kMissingValue, and a value that overflows raises.
double GammaFunction(double x) {
  RequireNumber(x);
  if (x == 0) return kMissingValue;
  if (x < 0) {
    const double k = std::fabs(std::floor(x));
    if (k + x == 0 || std::isinf(x)) return kMissingValue;
    double g = GammaFunction(k + x);
    // Each divisor but the last two exceeds 2 in size, so g reaches zero
    // within about 1100 passes (from at most 2^53, since k + x is at least one
    // unit in the last place of x); the divisions left only flip its sign.
    for (double i = 0; i < k; ++i) {
      if (g == 0) return std::fmod(k - i, 2) == 1 ? -g : g;
      g = g / (i + x);
    }
    return RequireFinite(g);
  }
  if (x < 1) return RequireFinite(GammaFunction(x + 1) / x);
  if (x <= 2) {
    const double u = x - 1;
    // clang-format off
    return ((((((((0.035868343 * u - 0.193527818) * u + 0.482199394) * u - 0.756704078) * u +
                0.918206857) * u - 0.897056937) * u + 0.988205891) * u - 0.577191652) * u) + 1;
    // clang-format on
  }
  return GuardedExp(LogGamma(x));
}

// Stirling's series for ln Gamma(y + 1) with four terms and ln sqrt(2 pi)
// rounded to 0.91893854 (error about 3e-9 from the constant alone). Below
// 1 / DBL_MAX, where Gamma(x) = Gamma(x + 1) / x overflows, its logarithm is
// taken as the difference of the two logarithms; above 2.5e305 the value
// itself overflows and raises.
double LogGamma(double x) {
  RequireNumber(x);
  if (x > 0 && x < 1e-300) {
    const double g = GammaFunction(x + 1);
    if (x < g / std::numeric_limits<double>::max()) return GuardedLog(g) - GuardedLog(x);
  }
  if (x <= 2) return GuardedLog(GammaFunction(x));
  const double y = x - 1;
  return RequireFinite(
      (y + 0.5) * GuardedLog(y) + 0.91893854 - y + 0.08333333333333333 * GuardedPow(y, -1) -
      0.002777777777777778 * GuardedPow(y, -3) + 0.0007936507936507937 * GuardedPow(y, -5) -
      0.0005952380952380953 * GuardedPow(y, -7));
}

// Regularised incomplete beta ratio. The whole part of b is peeled off by a
// finite sum of ratio terms, the fractional rest bb in (0, 1] goes through the
// hypergeometric power series in x, stopped at a relative term size of 1e-6;
// x is reflected to 1 - x above 0.5 so that the series converges at least
// like 0.5^i. Shapes must be positive and finite, and the one peeled off at
// most 2e4.
double IncompleteBeta(double x, double a, double b) {
  RequireNumber(x);
  if (x <= 0) return 0.0;
  if (x >= 1) return 1.0;
  if (!(a > 0 && b > 0 && a < kInfinity && b < kInfinity)) throw SilentAbort{};
  const bool reflected = x > 0.5;
  if (reflected) {
    x = 1 - x;
    std::swap(a, b);
  }
  const double n = std::ceil(b - 1);
  if (n > kMaxPeeledTerms) throw SilentAbort{};
  double s1 = 0, s2 = 0, s3 = 0, s4 = 0;
  for (double i = 1; i <= n; ++i) {
    const double q = b - (i - 1);
    const double r = q + (a - 1);
    s1 += GuardedLog(r);
    s3 += GuardedLog(q);
    s2 += GuardedLog(q - 1);
    s4 += GuardedExp(s3 - (i * GuardedLog(1 - x) + s1));
  }
  const double bb = b - n;

  double s = 1, u = 1;
  double i = 0;
  // The stop is written so that a ratio that is not a number also ends the
  // series: a NaN argument would otherwise never stop it.
  do {
    i = i + 1;
    const double e = a + i;
    u = (e - 1) * ((i - bb) / (e * i)) * x * u;
    s = s + u;
  } while (u / s > 1e-6);

  const double t = a * GuardedLog(x) - LogGamma(a);
  const double l1 = GuardedLog(s) - (GuardedLog(a) + LogGamma(bb)) + t + LogGamma(a + bb);
  const double first = GuardedExp(std::max(l1, -800.0));
  double second = 0;
  if (s4 != 0) {
    const double l2 = GuardedLog(s4) + (b * GuardedLog(1 - x) - GuardedLog(b)) - LogGamma(bb) - s2 +
                      t + LogGamma(a + bb) + s1;
    second = GuardedExp(std::max(l2, -800.0));
  }
  const double sum = RequireFinite(first + second);
  return reflected ? 1 - sum : sum;
}

// Chi-square probability: the Wilson-Hilferty normal form from 100 degrees of
// freedom, below it the finite sum for even df and, for odd df, the
// asymptotic upper-tail series (y >= 7.107) or the lower-tail power series,
// each cut off at a fixed length with a correction of its last term. Negative
// degrees of freedom are outside the domain (the series would run for
// ceil(24.75 - df / 2) terms).
double ChiSquareCdf(double x, double df) {
  RequireNumber(x);
  if (!(df >= 0)) throw SilentAbort{};
  if (x <= 0) return 0.0;
  if (df >= 100) {
    const double d = 4.5 * df;
    const double z = GuardedSqrt(d) * (GuardedPow(x / df, 1.0 / 3) - (1 - 1 / d));
    const double p = NormalCdf(z);
    return p > 0 ? p : 0.0;
  }
  const double h = df / 2;
  const double y = x / 2;
  const double e = y <= 500 ? GuardedExp(-y) : GuardedExp(-500);
  double p;
  if (std::ceil(h) == h) {
    double s = 0;
    for (double i = 1; i <= h; ++i) s += GuardedPow(y, i - 1) / GammaFunction(i);
    p = 1 - e * s;
  } else if (y >= 7.107) {
    const double n = std::ceil(h + 7.107);
    double s = 0;
    for (double i = 1; i <= n; ++i) {
      const double d = h - i;
      double term = GuardedPow(y, d) / GammaFunction(d + 1);
      if (i == n) term = term / 2;
      s += term;
    }
    p = 1 - e * s;
  } else {
    const double n = std::max(1.0, std::ceil(24.75 - h));
    double s = 0;
    for (double i = 1; i <= n; ++i) {
      const double d = i + h;
      double term = GuardedPow(y, d - 1) / GammaFunction(d);
      if (i == n) term = term * (1 + 1 / (2 * ((n + h) / y - 1)));
      s += term;
    }
    p = e * s;
  }
  return RequireFinite(p > 0 ? p : 0.0);
}

namespace {

// Wilson-Hilferty chi-square value for v degrees of freedom at the upper
// normal deviate w.
double WilsonHilferty(double v, double w) {
  const double c = 2 / (9 * v);
  const double t = 1 - (GuardedSqrt(c) * w + c);
  return v * t * t * t;
}

}  // namespace

// Chi-square quantile: Wilson-Hilferty start, refined below 100 degrees of
// freedom by at most 60 passes of regula falsi on ChiSquareCdf.
double ChiSquareQuantile(double p, double df) {
  RequireNumber(p);
  if (!(df > 0)) throw SilentAbort{};
  if (p <= 0) return 0.0;
  const double w = -NormalQuantile(p);
  double x0 = WilsonHilferty(df, w);
  if (df >= 100) return RequireFinite(x0);
  double x1 = WilsonHilferty(df + 1, w);
  if (x0 < 0) x0 = 0;
  // A negative second start (tiny p, few df) is pushed up with more df.
  for (double k = df + 1; !(x1 > 0);) {
    k = k + 1;
    x1 = WilsonHilferty(k + 1, w);
    if (k > 30) break;
  }
  const double f0 = p - ChiSquareCdf(x0, df);
  const double f1 = p - ChiSquareCdf(x1, df);
  const double tolerance = df <= 3 && p <= 0.1 ? 1e-10 * p : 1e-6 * p;
  const double xn = RegulaFalsi(x0, f0, x1, f1, tolerance, 60, 1e-30,
                                [&](double x) { return p - ChiSquareCdf(x, df); });
  return RequireFinite(xn < 0 ? 0.0 : xn);
}

// F quantile through Student's t for one degree of freedom, normal and
// chi-square limits above 500, else through the beta quantile. Inherits the
// coarse stop of the beta search: measured up to 6% off at p = 0.99. A
// value that does not come out a finite number (both df near the top of the
// double range, or b = 1 at the upper end) raises.
double FQuantile(double p, double df1, double df2) {
  RequireNumber(p);
  if (!(df1 > 0 && df2 > 0)) throw SilentAbort{};
  if (p <= 0) return 0.0;
  double f;
  if (df1 == 1) {
    const double t = StudentQuantile((1 - p) / 2, df2);
    f = t * t;
  } else if (df2 == 1) {
    const double t = StudentQuantile(p / 2, df1);
    f = 1 / (t * t);
  } else if (df1 > 500 && df2 > 500) {
    f = (NormalQuantile(p) * GuardedSqrt(2 * (df1 + df2 - 2) / ((df2 - 4) * df1)) + 1) * df2 /
        (df2 - 2);
  } else if (df1 > 500) {
    f = df2 / ChiSquareQuantile(1 - p, df2);
  } else if (df2 > 500) {
    f = ChiSquareQuantile(p, df1) / df1;
  } else if (p < 0.5) {
    const double b = BetaQuantile(1 - p, df2 / 2, df1 / 2);
    f = (1 - b) * df2 / (b * df1);
  } else {
    const double b = BetaQuantile(p, df1 / 2, df2 / 2);
    f = b * df2 / ((1 - b) * df1);
  }
  return RequireFinite(f);
}

// Beta quantile: two starts from Abramowitz and Stegun 26.5.22, then at most
// 30 passes of regula falsi on IncompleteBeta. Never below 1e-14 for p > 0.
double BetaQuantile(double p, double a, double b) {
  RequireNumber(p);
  // Shapes that IncompleteBeta refuses to peel (and that leave the starts
  // without a value) are refused here too, rather than ending at the floor.
  if (!(a > 0 && b > 0 && std::ceil(std::max(a, b) - 1) <= kMaxPeeledTerms)) {
    throw SilentAbort{};
  }
  if (p >= 1) return 1.0;
  if (p <= 0) return 0.0;
  const double y = NormalQuantile(1 - p);
  const double l = (y * y - 3) / 6;
  const double bi = 1 / std::max(2 * b - 1, 0.5);
  const double ai = 1 / std::max(2 * a - 1, 0.5);
  // Below p = 1.1e-16, 1 - p rounds to 1 and y is the normal quantile's
  // stand-in for infinity, whose square overflows. The first term of w is
  // then +inf and the second -inf times (bi - ai): with bi < ai, w is +inf
  // and its exponential overflows, so SilentAbort; otherwise w has no value
  // and neither has the start, and the result is the floor.
  if (!std::isfinite(l)) {
    if (bi < ai) throw SilentAbort{};
    return kBetaQuantileFloor;
  }
  const double h = 2 / (ai + bi);
  const double w = y * GuardedSqrt(h + l) / h - (bi - ai) * (l + 5.0 / 6 - 2 / (3 * h));
  const double e = GuardedExp(2 * w);
  const double x0 = a / (b * e + a);
  const double plain_e = std::exp(2 * w);
  const double x1 = a == b ? a / ((1 + b) * plain_e + a) : (1 + a) / ((1 + b) * plain_e + a + 1);
  const double f0 = p - IncompleteBeta(x0, a, b);
  const double f1 = p - IncompleteBeta(x1, a, b);
  double xn = x0;
  if (!(std::fabs(x0 - x1) < 1e-14) && !(std::fabs((f0 - f1) / (x0 - x1)) <= 1e-14)) {
    xn = RegulaFalsi(x0, f0, x1, f1, 1e-14, 30, 1e-14,
                     [&](double x) { return p - IncompleteBeta(x, a, b); });
  }
  return RequireFinite(xn >= kBetaQuantileFloor ? xn : kBetaQuantileFloor);
}

}  // namespace zv

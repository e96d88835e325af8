#include "stats/distributions.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

#include "frame/missing_value.h"
#include "stats/gauss_legendre.h"
#include "stats/guarded_math.h"
#include "stats/special_functions.h"

namespace zv {

namespace {

// sqrt(2 pi) to the digits the densities use.
constexpr double kSqrtTwoPi = 2.50662827462;
// ln 2 to the digits the chi-square density uses.
constexpr double kLn2Rounded = 0.6931471805599;

// Every running sum below is bounded by the arguments' domain: past this
// many terms the call raises SilentAbort instead of running for seconds.
// The Binomial pays two LogGamma per term; the other sums one product.
constexpr double kMaxBinomialTerms = 2e5;
constexpr double kMaxProductTerms = 2e6;

// Counts above 2^53 are no longer one apart as doubles: a search that would
// step past it has no whole-number answer.
constexpr double kLargestCount = 9007199254740992.0;

void CountTerm(double terms, double cap) {
  if (terms > cap) throw SilentAbort{};
}

double DensityOf(int32_t id, const double* q, double x);
double CdfOf(int32_t id, int32_t index, const double* block, double x);

// The value of a count at x: 2.9999999999999999 is 3.0 as a double already,
// and the 1e-20 is added before the floor.
double CountAt(double x) {
  return std::floor(x + 1e-20);
}

// The lower-tail sums of the Poisson, Binomial and Negative Binomial, built
// one term at a time. DistributionCdf and the inverse search share them, so
// that both add the same terms in the same order and see the same values.

// Each Advance adds the next term and returns false once the sum has settled:
// past the largest term the terms only shrink, so one that is too small to
// change the sum is followed by others that cannot change it either. Stopping
// there gives the same sum as adding all of them.

// Poisson: exp(-p0) times the sum over i = 0 .. k of p0^i / i!.
struct PoissonSum {
  double i = 0;
  double term = 1;
  double sum = 1;
};
bool Advance(PoissonSum& s, double mean) {
  const double before = s.sum;
  s.i = s.i + 1;
  s.term = s.term * (mean / s.i);
  s.sum = s.sum + s.term;
  return !(s.i > mean && s.sum == before);
}

// Binomial: the masses summed from 0.
struct BinomialSum {
  double i = 0;
  double sum = 0;
  double term = 0;
};
void Advance(BinomialSum& s, const double* q) {
  s.i = s.i + 1;
  CountTerm(s.i, kMaxBinomialTerms);
  s.term = DensityOf(kDistBinomial, q, s.i);
  s.sum = s.sum + s.term;
}
BinomialSum StartBinomialSum(const double* q) {
  const double first = DensityOf(kDistBinomial, q, 0);
  return {0, first, first};
}
// Past the mode the masses fall. One below 1e-17 of the sum cannot change it
// (half a unit in its last place is at least 5.5e-17 of it), and neither can
// the smaller ones after it: the rounding of the masses themselves (about
// 1e-8 relative, from LogGamma) is far from that factor of 5.5.
bool Settled(const BinomialSum& s, const double* q) {
  return s.i > (q[1] + 1) * q[0] && s.term <= 1e-17 * s.sum;
}

// Negative Binomial above k = p1: Gamma(p1) times the ratios of successive
// masses, scaled by p0^p1 / Gamma(p1) at the end.
struct NegativeBinomialSum {
  double i;
  double term;
  double sum;
  double ratio;  // of the last term to the one before
};
NegativeBinomialSum StartNegativeBinomialSum(const double* q) {
  const double g = GuardedExp(LogGamma(q[1]));
  return {std::trunc(q[1]), g, g, 1};
}
bool Advance(NegativeBinomialSum& s, const double* q) {
  const double before = s.sum;
  s.i = s.i + 1;
  CountTerm(s.i - q[1], kMaxProductTerms);
  s.ratio = ((s.i - 1) / (s.i - q[1])) * (1 - q[0]);
  s.term = s.ratio * s.term;
  s.sum = s.sum + s.term;
  return !(s.ratio < 1 && s.sum == before);
}
double NegativeBinomialScale(const double* q) {
  return GuardedPow(q[0], q[1]) / GuardedExp(LogGamma(q[1]));
}

// The smallest whole x >= start whose cumulative reaches p, found from an
// estimate x by single steps down and up. The cumulative is monotone, so this
// is the count the plain search from `start` finds; a few steps settle a
// rounded estimate, and more than 64 mean the counts are no longer whole
// numbers one apart.
double StepToFirstReaching(int32_t id, const double* q, double p, double start, double x) {
  if (!(x >= start)) x = start;
  if (!(x <= kLargestCount)) throw SilentAbort{};
  for (int step = 0; x > start && CdfOf(id, 0, q, x - 1) >= p; ++step) {
    if (step == 64) throw SilentAbort{};
    x = x - 1;
  }
  for (int step = 0; !(CdfOf(id, 0, q, x) >= p); ++step) {
    if (step == 64 || x >= kLargestCount) throw SilentAbort{};
    x = x + 1;
  }
  return x;
}

// Smallest count x = 0, 1, 2, ... whose cumulative reaches p, for the
// discrete ids. Stretches where the cumulative is 0 are skipped, the running
// sums are carried from one x to the next, and the Geometric and Discrete
// Uniform start from their closed-form inverse; none of this changes a
// result. Where the cumulative provably never reaches p it returns
// kMissingValue instead of running forever: a Poisson mean above 200 (exp(-p0)
// is an exact 0), a running sum that has settled below p, a Geometric with
// 1 - p0 >= 1, and a Negative Binomial whose p0^p1 is an exact 0. Sums longer
// than their cap raise SilentAbort.
double DiscreteSearch(int32_t id, const double* q, double p) {
  double x = 0;
  switch (id) {
    case kDistPoisson: {
      if (!(q[2] > 0)) return kMissingValue;
      PoissonSum s;
      while (!(q[2] * s.sum >= p)) {
        if (!Advance(s, q[0])) return kMissingValue;
        x = x + 1;
      }
      return x;
    }
    case kDistBinomial: {
      BinomialSum s = StartBinomialSum(q);
      for (;;) {
        const double cdf = x > q[1] ? 1.0 : s.sum;
        if (cdf >= p) return x;
        // A settled sum stays below p up to the number of trials.
        if (Settled(s, q)) return std::floor(q[1]) + 1;
        x = x + 1;
        if (x <= q[1]) Advance(s, q);
      }
    }
    case kDistNegativeBinomial: {
      if (x < q[1]) {
        if (0.0 >= p) return x;
        x = std::ceil(q[1]);
      }
      if (x == q[1]) {
        if (DensityOf(id, q, x) >= p) return x;
        x = x + 1;
      }
      NegativeBinomialSum s = StartNegativeBinomialSum(q);
      const double scale = NegativeBinomialScale(q);
      if (!(scale > 0)) return kMissingValue;
      for (;;) {
        while (s.i < x) {
          if (!Advance(s, q) && !(s.sum * scale >= p)) return kMissingValue;
        }
        if (s.sum * scale >= p) return x;
        x = x + 1;
      }
    }
    case kDistGeometric: {
      if (CdfOf(id, 0, q, x) >= p) return x;
      if (!(1 - q[0] < 1)) return kMissingValue;
      // 1 - (1 - p0)^(x + 1) >= p from x = ln(1 - p) / ln(1 - p0) - 1 on.
      const double estimate =
          q[0] < 1 ? std::ceil(GuardedLog(1 - p) / GuardedLog(1 - q[0]) - 1) : 0.0;
      return StepToFirstReaching(id, q, p, 0, estimate);
    }
    case kDistDiscreteUniform: {
      if (x < q[0]) {
        if (0.0 >= p) return x;
        x = std::ceil(q[0]);
      }
      // (k - p0 + 1) / (p1 - p0 + 1) >= p from k = p (p1 - p0 + 1) + p0 - 1 on.
      const double estimate = std::ceil(p * (q[1] - q[0] + 1) + q[0] - 1);
      return StepToFirstReaching(id, q, p, x, estimate);
    }
    default:  // Bernoulli: the cumulative reaches 1.0 at 1.
      while (!(CdfOf(id, 0, q, x) >= p)) x = x + 1;
      return x;
  }
}

}  // namespace

bool IsDiscreteDistribution(int32_t id) {
  switch (id) {
    case kDistPoisson:
    case kDistBernoulli:
    case kDistBinomial:
    case kDistDiscreteUniform:
    case kDistGeometric:
    case kDistNegativeBinomial:
      return true;
    default:
      return false;
  }
}

std::string_view DistributionLiteralName(int32_t id) {
  static constexpr std::string_view kNames[kDistributionCount] = {
      "",          "",
      "",          "",
      "",          "Poisson",
      "Beta",      "Chi-Square",
      "Erlang",    "Bernoulli",
      "Binomial",  "F",
      "Gamma",     "Laplace",
      "Logistic",  "Discrete Uniform",
      "Geometric", "Student's t",
      "Pareto",    "Triangular",
      "Uniform",   "Negative Binomial",
  };
  return id >= 0 && id < kDistributionCount ? kNames[id] : std::string_view();
}

const DistributionParameterInfo& DistributionUserParameters(int32_t id) {
  static constexpr DistributionParameterInfo kTable[kDistributionCount] = {
      {1, {"mean"}},
      {2, {"mode", "scale"}},
      {2, {"mean of X", "standard deviation of X"}},
      {2, {"mean", "standard deviation"}},
      {3, {"shape", "scale", "starting point"}},
      {1, {"mean"}},
      {2, {"shape 1", "shape 2"}},
      {1, {"degrees of freedom"}},
      {2, {"shape (whole)", "rate"}},
      {1, {"probability"}},
      {2, {"probability", "number of trials"}},
      {2, {"numerator degrees of freedom", "denominator degrees of freedom"}},
      {2, {"shape", "rate"}},
      {2, {"mean", "rate of decay"}},
      {2, {"mean", "standard deviation"}},
      {2, {"lower limit", "upper limit"}},
      {1, {"probability (failures before the first success)"}},
      {1, {"degrees of freedom"}},
      {1, {"shape (lower limit 1)"}},
      {3, {"lower limit", "mode", "upper limit"}},
      {2, {"lower limit", "upper limit"}},
      {2, {"probability", "number of successes (counts trials)"}},
  };
  static constexpr DistributionParameterInfo kNone{0, {}};
  return id >= 0 && id < kDistributionCount ? kTable[id] : kNone;
}

void LognormalLogParameters(double& a, double& b) {
  const double v = a * a;
  const double s = v + b * b;
  a = GuardedLog(v / GuardedSqrt(s));
  b = GuardedLog(s / v);
}

void PrepareDistributionParameters(int32_t id, double* block, int32_t count) {
  for (int32_t r = 0; r < count; ++r) {
    double* q = block + r * kParametersPerRecord;
    switch (id) {
      case kDistExtremeValue:
        q[2] = GuardedLog(1 / q[1]);
        break;
      case kDistLognormal: {
        double a = q[0], b = q[1];
        LognormalLogParameters(a, b);
        q[2] = a;
        q[3] = GuardedSqrt(b);
        break;
      }
      case kDistPoisson:
        q[2] = GuardedExp(-q[0]);
        break;
      case kDistBeta:
        q[2] = GammaFunction(q[0]) * (GammaFunction(q[1]) / GammaFunction(q[0] + q[1]));
        break;
      case kDistChiSquare:
        q[2] = LogGamma(q[0] / 2);
        break;
      case kDistErlang:
        q[2] = -(LogGamma(q[0]) + GuardedLog(1 / q[1]));
        break;
      case kDistBinomial:
        q[2] = LogGamma(q[1] + 1);
        q[3] = GuardedLog(1 - q[0]);
        break;
      case kDistF:
        q[2] = LogGamma((q[0] + q[1]) / 2) - (LogGamma(q[0] / 2) + LogGamma(q[1] / 2));
        q[3] = 0.5 * q[0] * GuardedLog(q[0] / q[1]);
        break;
      case kDistGamma:
        q[2] = -(LogGamma(q[0]) + q[0] * GuardedLog(1 / q[1]));
        break;
      case kDistStudentT:
        q[2] = LogGamma((q[0] + 1) / 2) - 0.5 * GuardedLog(std::numbers::pi * q[0]) -
               LogGamma(q[0] / 2);
        break;
      case kDistNegativeBinomial:
        q[2] = q[1] * GuardedLog(q[0]) - LogGamma(q[1]);
        q[3] = GuardedLog(1 - q[0]);
        break;
      default:
        break;
    }
  }
}

namespace {

double DensityOf(int32_t id, const double* q, double x) {
  const double p0 = q[0], p1 = q[1], p2 = q[2], p3 = q[3];
  switch (id) {
    case kDistExponential:
      return x >= 0 ? GuardedExp(-x / p0) / p0 : kMissingValue;
    case kDistExtremeValue: {
      const double z = (x - p0) / p1;
      if (z < -200 || z > 200) return 0.0;
      const double e = GuardedExp(z);
      if (e > 200) return 0.0;
      return GuardedExp(-e) * e / p1;
    }
    case kDistLognormal: {
      if (x == 0) return 0.0;
      if (x < 0) return kMissingValue;
      const double d = GuardedLog(x) - p2;
      return GuardedExp(-(d * d) / (2 * p3 * p3)) / (p3 * x * kSqrtTwoPi);
    }
    case kDistNormal: {
      const double d = x - p0;
      return GuardedExp(-(d * d) / (2 * p1 * p1)) / (p1 * kSqrtTwoPi);
    }
    case kDistWeibull: {
      const double d = x - p2;
      if (d > 0) {
        return GuardedExp(GuardedLog(p0) - p0 * GuardedLog(p1) + (p0 - 1) * GuardedLog(d) -
                          GuardedPow(d / p1, p0));
      }
      if (d == 0 && p0 > 1) return 0.0;
      if (d == 0 && p0 == 1) return 1 / p1;
      return kMissingValue;
    }
    case kDistPoisson:
      return GuardedExp(x * GuardedLog(p0) - LogGamma(x + 1) - p0);
    case kDistBeta:
      if (x < 0 || x > 1) return kMissingValue;
      return GuardedPow(x, p0 - 1) * GuardedPow(1 - x, p1 - 1) / p2;
    case kDistChiSquare:
      if (x < 0) return kMissingValue;
      if (x < 1e-100) x = 1e-100;
      return GuardedExp(0.5 * (p0 - 2) * GuardedLog(x) - 0.5 * p0 * kLn2Rounded - p2 - 0.5 * x);
    case kDistErlang: {
      if (x > 0) {
        const double y = p1 * x;
        return GuardedExp((p0 - 1) * GuardedLog(y) + p2 - y);
      }
      if (x == 0) return p0 == 1 ? p1 : 0.0;
      return kMissingValue;
    }
    case kDistBernoulli: {
      const double k = std::trunc(x);
      if (k == 0) return 1 - p0;
      if (k == 1) return p0;
      return kMissingValue;
    }
    case kDistBinomial:
      if (x < 0 || x > p1) return kMissingValue;
      return GuardedExp(x * GuardedLog(p0) - LogGamma(p1 - x + 1) - LogGamma(x + 1) +
                        p3 * (p1 - x) + p2);
    case kDistF:
      if (x < 0) return kMissingValue;
      if (x == 0) x = 1e-100;
      return GuardedExp(p3 + p2 + (0.5 * p0 - 1) * GuardedLog(x) -
                        0.5 * (p1 + p0) * GuardedLog(1 + (p0 / p1) * x));
    case kDistGamma:
      if (x > 0) return GuardedExp((p0 - 1) * GuardedLog(x) - p1 * x + p2);
      if (x == 0 && p0 > 1) return 0.0;
      if (x == 0 && p0 == 1) return p1;
      return kMissingValue;
    case kDistLaplace:
      return 0.5 * p1 * GuardedExp(-std::fabs(x - p0) * p1);
    case kDistLogistic: {
      const double s = p1 * kLogisticScale;
      const double e = GuardedExp((x - p0) / s);
      return e / ((e + 1) * (e + 1) * s);
    }
    case kDistDiscreteUniform:
      if (p0 <= x && x <= p1 && p1 - p0 + 1 != 0) return 1 / (p1 - p0 + 1);
      return kMissingValue;
    case kDistGeometric:
      return p0 * GuardedPow(1 - p0, x);
    case kDistStudentT:
      return GuardedExp(p2 - 0.5 * (1 + p0) * GuardedLog(1 + x * x / p0));
    case kDistPareto:
      return x >= 1 ? p0 * GuardedPow(x, -1 - p0) : kMissingValue;
    case kDistTriangular:
      if (p0 <= x && x <= p1) return 2 * (x - p0) / ((p2 - p0) * (p1 - p0));
      if (p1 < x && x <= p2) return 2 * (p2 - x) / ((p2 - p0) * (p2 - p1));
      return kMissingValue;
    case kDistUniform:
      return p0 <= x && x <= p1 ? 1 / (p1 - p0) : kMissingValue;
    case kDistNegativeBinomial:
      if (x < p1) return kMissingValue;
      return GuardedExp(LogGamma(x) - LogGamma(x - p1 + 1) + p3 * (x - p1) + p2);
    default:
      return kMissingValue;
  }
}

double CdfOf(int32_t id, int32_t index, const double* block, double x) {
  const double* q = block + index;
  const double p0 = q[0], p1 = q[1], p2 = q[2];
  const double k = CountAt(x);
  switch (id) {
    case kDistExponential:
      return 1 - GuardedExp(-x / p0);
    case kDistExtremeValue: {
      const double z = (x - p0) / p1;
      if (z > 200) return 1.0;
      if (z < -200) return 0.0;
      const double e = GuardedExp(z);
      if (e > 200) return 1.0;
      return 1 - GuardedExp(-e);
    }
    case kDistLognormal:
      return x <= 0 ? 0.0 : NormalCdfAt(GuardedLog(x), p2, q[3]);
    case kDistNormal:
      return NormalCdfAt(x, p0, p1);
    case kDistWeibull: {
      const double d = x - p2;
      return d <= 0 ? 0.0 : 1 - GuardedExp(-GuardedPow(d / p1, p0));
    }
    case kDistPoisson: {
      if (k < 0) return 0.0;
      // exp(-p0) is held at an exact 0 above a mean of 200: the product is
      // 0 however long the sum would run.
      if (p2 == 0) return 0.0;
      PoissonSum s;
      while (s.i < k && Advance(s, p0)) {
      }
      return p2 * s.sum;
    }
    case kDistBeta:
      return IncompleteBeta(x, p0, p1);
    case kDistChiSquare:
      return ChiSquareCdf(x, p0);
    case kDistErlang: {
      if (x <= 0) return 0.0;
      if (x < 1e-100) x = 1e-100;
      const double y = p1 * x;
      const double m = std::trunc(p0);
      // The terms y^i / i! by running products: exact factorials. Past i = y
      // they only shrink, so one that leaves the sum unchanged ends it (as in
      // the Poisson sum); before that the sum overflows for y above about
      // 710, where the old product 0 times infinity had no value.
      double term = 1, sum = 0;
      for (double i = 0; i < m; ++i) {
        const double before = sum;
        if (i > 0) term = term * (y / i);
        sum = sum + term;
        if (!std::isfinite(sum)) throw SilentAbort{};
        if (i > std::fabs(y) && sum == before) break;
      }
      return 1 - GuardedExp(-y) * sum;
    }
    case kDistBernoulli:
      if (k < 0) return 0.0;
      return k < 1 ? 1 - p0 : 1.0;
    case kDistBinomial: {
      if (k < 0) return 0.0;
      if (k > p1) return 1.0;
      // A sum that must reach a term past the cap both at k and at the mode
      // is refused before it starts.
      if (std::min(k, (p1 + 1) * p0) > kMaxBinomialTerms) throw SilentAbort{};
      BinomialSum s = StartBinomialSum(q);
      while (s.i < k && !Settled(s, q)) Advance(s, q);
      return s.sum;
    }
    case kDistF:
    case kDistGamma:
      return QuadratureCdf(id, index, block, x);
    case kDistLaplace:
      return x > p0 ? 1 - 0.5 * GuardedExp(-(x - p0) * p1) : 0.5 * GuardedExp(-(p0 - x) * p1);
    case kDistLogistic:
      return 1 - 1 / (GuardedExp((x - p0) / (p1 * kLogisticScale)) + 1);
    case kDistDiscreteUniform:
      if (k < p0) return 0.0;
      if (k > p1) return 1.0;
      return (k - p0 + 1) / (p1 - p0 + 1);
    case kDistGeometric:
      return k < 0 ? 0.0 : 1 - GuardedPow(1 - p0, k + 1);
    case kDistStudentT:
      return StudentCdf(x, p0);
    case kDistPareto:
      return x < 1 ? 0.0 : 1 - GuardedPow(x, -p0);
    case kDistTriangular:
      if (x < p0) return 0.0;
      if (x <= p1) return (x - p0) * (x - p0) / ((p2 - p0) * (p1 - p0));
      if (x <= p2) return 1 - (p2 - x) * (p2 - x) / ((p2 - p0) * (p2 - p1));
      return 1.0;
    case kDistUniform:
      if (x < p0) return 0.0;
      return x <= p1 ? (x - p0) / (p1 - p0) : 1.0;
    case kDistNegativeBinomial: {
      if (k < p1) return 0.0;
      if (k == p1) return DensityOf(id, q, k);
      // A scale p0^p1 / Gamma(p1) that is an exact 0 makes the product 0.
      const double scale = NegativeBinomialScale(q);
      if (scale == 0) return 0.0;
      NegativeBinomialSum s = StartNegativeBinomialSum(q);
      while (s.i < k && Advance(s, q)) {
      }
      return s.sum * scale;
    }
    default:
      return kMissingValue;
  }
}

}  // namespace

namespace {

// A user parameter that is not a number would keep a running sum going.
void RequireNumbers(int32_t id, const double* q, double x) {
  if (std::isnan(x)) throw SilentAbort{};
  const DistributionParameterInfo& info = DistributionUserParameters(id);
  for (int32_t i = 0; i < info.count; ++i) {
    if (std::isnan(q[i])) throw SilentAbort{};
  }
}

}  // namespace

// A density that is not a finite number (a Beta or Gamma shape below 1 at
// its end point) has no value there, like a point outside the support.
double DistributionDensity(int32_t id, int32_t index, const double* block, double x) {
  RequireNumbers(id, block + index, x);
  const double f = DensityOf(id, block + index, x);
  return std::isfinite(f) ? f : kMissingValue;
}

// A probability that does not come out a number means parameters outside
// the distribution's domain.
double DistributionCdf(int32_t id, int32_t index, const double* block, double x) {
  RequireNumbers(id, block + index, x);
  const double p = CdfOf(id, index, block, x);
  if (!std::isfinite(p)) throw SilentAbort{};
  return p;
}

// One 32-point Gauss-Legendre rule over [0, x], without subdivision or error
// control: accurate where the density is smooth on [0, x], poor where it has
// a peak or a singularity at 0 (a Gamma shape below 1, an F with one
// numerator degree of freedom).
double QuadratureCdf(int32_t id, int32_t index, const double* block, double x) {
  const auto density = [&](double t) {
    const double f = DensityOf(id, block + index, t);
    return f == kMissingValue ? 0.0 : f;
  };
  const double h = x / 2;
  double sum = 0;
  for (std::size_t i = 0; i < kGaussLegendre32Abscissas.size(); ++i) {
    const double t = kGaussLegendre32Abscissas[i];
    sum += kGaussLegendre32Weights[i] * (density(h * (1 - t)) + density(h * (1 + t)));
  }
  return h * sum;
}

namespace {

double InverseOf(int32_t id, int32_t index, const double* block, double p) {
  const double* q = block + index;
  const double p0 = q[0], p1 = q[1], p2 = q[2];
  if (p >= 1) {
    switch (id) {
      case kDistBernoulli:
        return 1.0;
      case kDistBinomial:
      case kDistDiscreteUniform:
      case kDistUniform:
        return p1;
      case kDistTriangular:
        return p2;
      default:
        return kMissingValue;
    }
  }
  switch (id) {
    case kDistExponential:
      return p == 0 ? 0.0 : p0 * GuardedLog(1 / (1 - p));
    case kDistExtremeValue:
      return p == 0 ? 0.0 : p1 * GuardedLog(GuardedLog(1 / (1 - p))) + p0;
    case kDistLognormal:
      return p == 0 ? 0.0 : GuardedExp(NormalQuantileAt(p, p2, q[3]));
    case kDistNormal:
      return p == 0 ? kMissingValue : NormalQuantileAt(p, p0, p1);
    case kDistWeibull:
      return p == 0 ? p2 : p1 * GuardedPow(-GuardedLog(1 - p), 1 / p0) + p2;
    case kDistPoisson:
    case kDistBernoulli:
    case kDistBinomial:
    case kDistDiscreteUniform:
    case kDistGeometric:
    case kDistNegativeBinomial:
      return p == 0 ? kMissingValue : DiscreteSearch(id, q, p);
    case kDistBeta:
      return p == 0 ? kMissingValue : BetaQuantile(p, p0, p1);
    case kDistChiSquare:
      return p == 0 ? kMissingValue : ChiSquareQuantile(p, p0);
    case kDistErlang:
    case kDistGamma:
      return p == 0 ? kMissingValue : (0.5 / p1) * ChiSquareQuantile(p, 2 * p0);
    case kDistF:
      return p == 0 ? kMissingValue : FQuantile(p, p0, p1);
    case kDistLaplace:
      if (p == 0) return kMissingValue;
      return p > 0.5 ? p0 - GuardedLog(2 * (1 - p)) / p1 : p0 + GuardedLog(2 * p) / p1;
    case kDistLogistic:
      return p == 0 ? kMissingValue : p1 * kLogisticScale * GuardedLog(p / (1 - p)) + p0;
    case kDistStudentT:
      return p == 0 ? kMissingValue : StudentQuantile(p, p0);
    case kDistPareto:
      // The plain power function, as the inverse has always used.
      return p == 0 ? 0.0 : std::pow(1 / (1 - p), 1 / p0);
    case kDistTriangular:
      if (p <= 0) return p0;
      if (p > (p1 - p0) / (p2 - p0)) return p2 - GuardedSqrt((1 - p) * (p2 - p1) * (p2 - p0));
      return p0 + GuardedSqrt(p * (p1 - p0) * (p2 - p0));
    case kDistUniform:
      return p <= 0 ? p0 : (p1 - p0) * p + p0;
    default:
      return kMissingValue;
  }
}

}  // namespace

// An inverse that is not a finite number has no value, as at p = 1.
double DistributionInverse(int32_t id, int32_t index, const double* block, double p) {
  RequireNumbers(id, block + index, p);
  const double x = InverseOf(id, index, block, p);
  return std::isfinite(x) ? x : kMissingValue;
}

}  // namespace zv

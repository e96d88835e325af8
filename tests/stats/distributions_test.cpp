// The distribution catalogue: densities against Boost.Math, the identities
// that tie density, cumulative and inverse together, support rules, the
// count rule of the discrete ids, and the guards of the discrete search.
#include "stats/distributions.h"

#include <gtest/gtest.h>

#include <boost/math/distributions.hpp>
#include <boost/math/quadrature/gauss_kronrod.hpp>
#include <cmath>
#include <limits>

#include "frame/host_records.h"
#include "stats/special_functions.h"

namespace zv {
namespace {

namespace bm = boost::math;

DistributionParameters Prepared(int32_t id, double p0, double p1 = 0, double p2 = 0) {
  DistributionParameters r{{p0, p1, p2, 0}};
  PrepareDistributionParameters(id, r.p, 1);
  return r;
}

double Density(int32_t id, const DistributionParameters& r, double x) {
  return DistributionDensity(id, 0, r.p, x);
}
double Cdf(int32_t id, const DistributionParameters& r, double x) {
  return DistributionCdf(id, 0, r.p, x);
}
double Inverse(int32_t id, const DistributionParameters& r, double p) {
  return DistributionInverse(id, 0, r.p, p);
}

// One parameter set per id, with a point inside the support.
struct Case {
  int line;
  int32_t id;
  double p0, p1, p2, x;
};
constexpr Case kCases[] = {
    {__LINE__, kDistExponential, 2, 0, 0, 1.5}, {__LINE__, kDistExtremeValue, 1, 2, 0, 0.5},
    {__LINE__, kDistLognormal, 3, 1.5, 0, 2.5}, {__LINE__, kDistNormal, 1, 2, 0, 2.2},
    {__LINE__, kDistWeibull, 1.7, 2, 0.5, 2.1}, {__LINE__, kDistPoisson, 3.5, 0, 0, 4},
    {__LINE__, kDistBeta, 2.5, 3.5, 0, 0.3},    {__LINE__, kDistChiSquare, 5, 0, 0, 4.2},
    {__LINE__, kDistErlang, 3, 0.5, 0, 4.5},    {__LINE__, kDistBernoulli, 0.3, 0, 0, 1},
    {__LINE__, kDistBinomial, 0.35, 12, 0, 5},  {__LINE__, kDistF, 6, 12, 0, 1.3},
    {__LINE__, kDistGamma, 2.5, 1.5, 0, 1.2},   {__LINE__, kDistLaplace, 1, 2, 0, 1.4},
    {__LINE__, kDistLogistic, 1, 2, 0, 2.5},    {__LINE__, kDistDiscreteUniform, 2, 9, 0, 5},
    {__LINE__, kDistGeometric, 0.3, 0, 0, 3},   {__LINE__, kDistStudentT, 7, 0, 0, 1.1},
    {__LINE__, kDistPareto, 2.5, 0, 0, 1.7},    {__LINE__, kDistTriangular, 1, 2, 4, 2.6},
    {__LINE__, kDistUniform, -1, 3, 0, 0.5},    {__LINE__, kDistNegativeBinomial, 0.4, 3, 0, 6},
};

// Boost's density (or mass) for the same parameters. The Extreme Value here is
// the smallest-value form, Boost's largest-value form mirrored.
double ReferenceDensity(const Case& c) {
  const double x = c.x;
  switch (c.id) {
    case kDistExponential:
      return bm::pdf(bm::exponential(1 / c.p0), x);
    case kDistExtremeValue:
      return bm::pdf(bm::extreme_value(-c.p0, c.p1), -x);
    case kDistLognormal: {
      const double s2 = std::log1p(c.p1 * c.p1 / (c.p0 * c.p0));
      return bm::pdf(bm::lognormal(std::log(c.p0) - s2 / 2, std::sqrt(s2)), x);
    }
    case kDistNormal:
      return bm::pdf(bm::normal(c.p0, c.p1), x);
    case kDistWeibull:
      return bm::pdf(bm::weibull(c.p0, c.p1), x - c.p2);
    case kDistPoisson:
      return bm::pdf(bm::poisson(c.p0), x);
    case kDistBeta:
      return bm::pdf(bm::beta_distribution<>(c.p0, c.p1), x);
    case kDistChiSquare:
      return bm::pdf(bm::chi_squared(c.p0), x);
    case kDistErlang:
    case kDistGamma:
      return bm::pdf(bm::gamma_distribution<>(c.p0, 1 / c.p1), x);
    case kDistBernoulli:
      return bm::pdf(bm::bernoulli(c.p0), x);
    case kDistBinomial:
      return bm::pdf(bm::binomial(c.p1, c.p0), x);
    case kDistF:
      return bm::pdf(bm::fisher_f(c.p0, c.p1), x);
    case kDistLaplace:
      return bm::pdf(bm::laplace(c.p0, 1 / c.p1), x);
    case kDistLogistic:
      return bm::pdf(bm::logistic(c.p0, c.p1 * kLogisticScale), x);
    case kDistDiscreteUniform:
      return 1 / (c.p1 - c.p0 + 1);
    case kDistGeometric:
      return bm::pdf(bm::geometric(c.p0), x);
    case kDistStudentT:
      return bm::pdf(bm::students_t(c.p0), x);
    case kDistPareto:
      return bm::pdf(bm::pareto(1, c.p0), x);
    case kDistTriangular:
      return bm::pdf(bm::triangular(c.p0, c.p1, c.p2), x);
    case kDistUniform:
      return bm::pdf(bm::uniform(c.p0, c.p1), x);
    case kDistNegativeBinomial:
      return bm::pdf(bm::negative_binomial(c.p1, c.p0), x - c.p1);
  }
  return std::numeric_limits<double>::quiet_NaN();
}

TEST(DistributionDensity, AgainstBoost) {
  // Relative tolerance 3e-4: the densities with gamma-function constants carry
  // the error of LogGamma just above 2 (measured 3e-4); the others agree to
  // rounding (2.50662827462 for sqrt(2 pi)).
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.line);
    const double ref = ReferenceDensity(c);
    EXPECT_NEAR(Density(c.id, Prepared(c.id, c.p0, c.p1, c.p2), c.x), ref, 3e-4 * ref);
  }
}

TEST(DistributionCdf, ContinuousDensityIntegratesToCumulative) {
  // cdf(x) - cdf(lo) against an adaptive Gauss-Kronrod integral of our own
  // density. The tolerance covers NormalCdf (3e-6) and the single 32-point
  // rule behind the F and Gamma cumulatives.
  for (const Case& c : kCases) {
    if (IsDiscreteDistribution(c.id)) continue;
    SCOPED_TRACE(c.line);
    const DistributionParameters r = Prepared(c.id, c.p0, c.p1, c.p2);
    const double from = c.x - 1;
    const double integral = bm::quadrature::gauss_kronrod<double, 31>::integrate(
        [&](double t) {
          const double f = Density(c.id, r, t);
          return f == kMissingValue ? 0.0 : f;
        },
        from, c.x, 15, 1e-12);
    EXPECT_NEAR(Cdf(c.id, r, c.x) - Cdf(c.id, r, from), integral, 1e-5);
  }
}

// The discrete cumulative is the running sum of the masses and counts
// k = floor(x + 1e-20): 2.9999999999999999 is 3.0 as a double; the largest
// double below 3 still counts 2, because 1e-20 is lost in the addition.
TEST(DistributionCdf, DiscreteCumulativeIsRunningSumOfMassesAtWholeCounts) {
  const double below3 = std::nextafter(3.0, 0.0);
  for (const Case& c : kCases) {
    if (!IsDiscreteDistribution(c.id)) continue;
    SCOPED_TRACE(c.line);
    const DistributionParameters r = Prepared(c.id, c.p0, c.p1, c.p2);
    double sum = 0;
    for (double k = 0; k <= c.x + 3; ++k) {
      const double f = Density(c.id, r, k);
      if (f != kMissingValue) sum += f;
      EXPECT_NEAR(Cdf(c.id, r, k), sum, 2e-5) << "k = " << k;
    }
    EXPECT_EQ(Cdf(c.id, r, 2.9999999999999999), Cdf(c.id, r, 3));
    EXPECT_EQ(Cdf(c.id, r, below3), Cdf(c.id, r, 2));
    EXPECT_EQ(Cdf(c.id, r, 3.7), Cdf(c.id, r, 3));
    EXPECT_EQ(Cdf(c.id, r, -0.5), 0.0);
  }
}

TEST(DistributionInverse, InvertsTheCumulative) {
  constexpr double kProbabilities[] = {0.01, 0.3, 0.5, 0.77, 0.99};
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.line);
    const DistributionParameters r = Prepared(c.id, c.p0, c.p1, c.p2);
    if (IsDiscreteDistribution(c.id)) continue;  // the plain search below
    for (double p : kProbabilities) {
      const double x = Inverse(c.id, r, p);
      if (c.id == kDistBeta || c.id == kDistF) {
        EXPECT_NEAR(Cdf(c.id, r, x), p, 1e-3) << p;  // the 30-pass beta search
      } else {
        // Erlang and Gamma invert through ChiSquareQuantile, whose cumulative
        // carries GammaFunction's error at whole arguments (1.2e-5 measured).
        EXPECT_NEAR(Cdf(c.id, r, x), p, 2e-5) << p;
      }
    }
  }
}

TEST(DistributionInverse, LimitsAtZeroAndOne) {
  struct Row {
    int line;
    int32_t id;
    double p, expected;
  };
  const Row kRows[] = {
      {__LINE__, kDistNormal, 1, kMissingValue}, {__LINE__, kDistPoisson, 1, kMissingValue},
      {__LINE__, kDistBernoulli, 1, 1.0},        {__LINE__, kDistBinomial, 1, 12},
      {__LINE__, kDistDiscreteUniform, 1, 9},    {__LINE__, kDistUniform, 1, 3},
      {__LINE__, kDistTriangular, 1, 4},         {__LINE__, kDistExtremeValue, 0, 0.0},
      {__LINE__, kDistLognormal, 0, 0.0},        {__LINE__, kDistPareto, 0, 0.0},
      {__LINE__, kDistExponential, 0, 0.0},      {__LINE__, kDistWeibull, 0, 0.5},
      {__LINE__, kDistNormal, 0, kMissingValue}, {__LINE__, kDistPoisson, 0, kMissingValue},
      {__LINE__, kDistTriangular, -0.5, 1},      {__LINE__, kDistUniform, -0.5, -1},
      {__LINE__, kDistTriangular, 1.0 / 3, 2},  // the second branch gives the mode
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    for (const Case& c : kCases) {
      if (c.id != row.id) continue;
      EXPECT_NEAR(Inverse(c.id, Prepared(c.id, c.p0, c.p1, c.p2), row.p), row.expected, 1e-15);
    }
  }
}

TEST(DistributionDensity, SupportRules) {
  struct Row {
    int line;
    int32_t id;
    double p0, p1, p2, x, expected;
  };
  constexpr double M = kMissingValue;
  const Row kRows[] = {
      {__LINE__, kDistExponential, 2, 0, 0, -0.1, M},
      {__LINE__, kDistLognormal, 3, 1, 0, 0, 0.0},
      {__LINE__, kDistLognormal, 3, 1, 0, -1, M},
      {__LINE__, kDistWeibull, 2, 1, 1, 1, 0.0},
      {__LINE__, kDistWeibull, 1, 4, 1, 1, 0.25},
      {__LINE__, kDistWeibull, 0.5, 4, 1, 1, M},
      {__LINE__, kDistWeibull, 2, 1, 1, 0.5, M},
      {__LINE__, kDistBeta, 2, 3, 0, 1.01, M},
      {__LINE__, kDistChiSquare, 3, 0, 0, -1, M},
      {__LINE__, kDistErlang, 1, 0.5, 0, 0, 0.5},
      {__LINE__, kDistErlang, 2, 0.5, 0, 0, 0.0},
      {__LINE__, kDistBernoulli, 0.3, 0, 0, 0.5, 0.7},
      {__LINE__, kDistBernoulli, 0.3, 0, 0, 1.9, 0.3},
      {__LINE__, kDistBernoulli, 0.3, 0, 0, 2, M},
      {__LINE__, kDistBinomial, 0.3, 5, 0, 6, M},
      {__LINE__, kDistF, 4, 6, 0, -1, M},
      {__LINE__, kDistGamma, 0.5, 2, 0, 0, M},
      {__LINE__, kDistGamma, 1, 2, 0, 0, 2},
      {__LINE__, kDistGamma, 1.5, 2, 0, 0, 0.0},
      {__LINE__, kDistDiscreteUniform, 2, 5, 0, 6, M},
      {__LINE__, kDistPareto, 2, 0, 0, 0.99, M},
      {__LINE__, kDistTriangular, 0, 1, 2, 2.5, M},
      {__LINE__, kDistUniform, 0, 1, 0, 1.5, M},
      {__LINE__, kDistNegativeBinomial, 0.5, 3, 0, 2, M},
      {__LINE__, kDistExtremeValue, 0, 1, 0, 250, 0.0},
      {__LINE__, kDistExtremeValue, 0, 1, 0, 6, 0.0},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(Density(r.id, Prepared(r.id, r.p0, r.p1, r.p2), r.x), r.expected);
  }
  // Chi-square and F at 0 take x as 1e-100 and stay finite.
  EXPECT_TRUE(std::isfinite(Density(kDistChiSquare, Prepared(kDistChiSquare, 3), 0)));
  EXPECT_TRUE(std::isfinite(Density(kDistF, Prepared(kDistF, 4, 6), 0)));
}

TEST(DistributionCdf, HandValues) {
  // Erlang, shape 3, rate 0.5, at x = 4: y = 2, 1 - e^-2 (1 + 2 + 2).
  // Negative Binomial p0 = 0.4, p1 = 3 at k = 5: 0.4^3 (1 + 3 (0.6) + 6 (0.36)).
  // Geometric p0 = 0.3 at k = 3: 1 - 0.7^4. Laplace (1, 2) at 1.4: 1 - 0.5 e^-0.8.
  // Logistic (1, 2) at 2.5: 1 - 1 / (exp(1.5 / (2 0.5513288954217993)) + 1).
  struct Pin {
    int line;
    int32_t id;
    double p0, p1, x, expected;
  };
  const Pin kPins[] = {
      {__LINE__, kDistErlang, 3, 0.5, 4, 1 - std::exp(-2.0) * 5},
      {__LINE__, kDistNegativeBinomial, 0.4, 3, 5, 0.064 * (1 + 1.8 + 2.16)},
      {__LINE__, kDistGeometric, 0.3, 0, 3, 1 - 0.7 * 0.7 * 0.7 * 0.7},
      {__LINE__, kDistLaplace, 1, 2, 1.4, 1 - 0.5 * std::exp(-0.8)},
      {__LINE__, kDistLogistic, 1, 2, 2.5, 1 - 1 / (std::exp(1.5 / 1.1026577908435986) + 1)},
  };
  for (const Pin& p : kPins) {
    SCOPED_TRACE(p.line);
    EXPECT_NEAR(Cdf(p.id, Prepared(p.id, p.p0, p.p1), p.x), p.expected, 1e-12);
  }
}

TEST(QuadratureCdf, SingleRuleFromZero) {
  const DistributionParameters gamma = Prepared(kDistGamma, 2.5, 1.5);
  EXPECT_EQ(QuadratureCdf(kDistGamma, 0, gamma.p, 0), 0.0);
  EXPECT_NEAR(QuadratureCdf(kDistGamma, 0, gamma.p, -1), 0.0, 1e-12);  // missing counts 0
  EXPECT_NEAR(QuadratureCdf(kDistGamma, 0, gamma.p, 3),
              bm::cdf(bm::gamma_distribution<>(2.5, 1 / 1.5), 3.0), 2e-4);
  // The parameter index counts doubles: the second record starts at 4.
  double block[8] = {9, 9, 9, 9, 2.5, 1.5, 0, 0};
  PrepareDistributionParameters(kDistGamma, block + 4, 1);
  EXPECT_EQ(QuadratureCdf(kDistGamma, 4, block, 3), QuadratureCdf(kDistGamma, 0, gamma.p, 3));
}

TEST(PrepareDistributionParameters, DerivedSlots) {
  double a = 3, b = 1.5;
  LognormalLogParameters(a, b);
  EXPECT_NEAR(b, std::log(1.25), 1e-15);  // ln(s / v) with v = 9, s = 11.25
  EXPECT_NEAR(a, std::log(9 / std::sqrt(11.25)), 1e-15);
  double block[8] = {0.5, 10, 0, 0, 0.2, 4, 0, 0};
  PrepareDistributionParameters(kDistBinomial, block, 2);
  EXPECT_EQ(block[3], std::log(0.5));
  EXPECT_EQ(block[7], std::log(0.8));
  EXPECT_EQ(block[6], LogGamma(5));
  // A Binomial probability of 1 leaves the domain of ln(1 - p0).
  double bad[4] = {1, 10, 0, 0};
  EXPECT_THROW(PrepareDistributionParameters(kDistBinomial, bad, 1), SilentAbort);
}

TEST(DistributionInverse, SearchesThatCannotReachPEnd) {
  // Poisson mean above 200: exp(-p0) is an exact 0 and the cumulative stays 0.
  EXPECT_EQ(Inverse(kDistPoisson, Prepared(kDistPoisson, 250), 0.5), kMissingValue);
  // Mean 3: the running sum settles just below 1.
  const DistributionParameters poisson = Prepared(kDistPoisson, 3);
  const double nearOne = std::nextafter(1.0, 0.0);
  const double x = Inverse(kDistPoisson, poisson, nearOne);
  EXPECT_TRUE(x == kMissingValue || Cdf(kDistPoisson, poisson, x) >= nearOne);
  // Geometric with p0 = 0: (1 - p0)^(k + 1) stays 1.
  EXPECT_EQ(Inverse(kDistGeometric, Prepared(kDistGeometric, 0), 0.5), kMissingValue);
  // Negative Binomial whose p0^p1 underflows to 0.
  EXPECT_EQ(Inverse(kDistNegativeBinomial, Prepared(kDistNegativeBinomial, 1e-60, 20), 0.5),
            kMissingValue);
  // Searches that do end are unchanged: a Poisson mean of 150 is found.
  const DistributionParameters big = Prepared(kDistPoisson, 150);
  const double median = Inverse(kDistPoisson, big, 0.5);
  using RoundUp =
      bm::policies::policy<bm::policies::discrete_quantile<bm::policies::integer_round_up>>;
  EXPECT_EQ(median, bm::quantile(bm::poisson_distribution<double, RoundUp>(150), 0.5));
}

// Inputs that once ran without end or gave NaN: each now ends at once with
// SilentAbort, MissingValue or a finite number.
TEST(Distributions, OutOfDomainEndsAtOnce) {
  constexpr double kThrows = 1.5e300;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  enum Op { kPdf, kCdf, kInv };
  struct Row {
    int line;
    int32_t id;
    double p0, p1;
    Op op;
    double x, expected;
  };
  const Row kRows[] = {
      {__LINE__, kDistPoisson, 3, 0, kPdf, -1e308, kThrows},  // LogGamma at a pole
      {__LINE__, kDistPoisson, 1000, 0, kCdf, 900, 0.0},      // exp(-p0) held at 0
      {__LINE__, kDistErlang, 1e15, 1, kCdf, 2, 0.0},         // all of e^2 summed
      {__LINE__, kDistErlang, 3, 1, kCdf, 1e308, kThrows},    // 0 times an infinite sum
      {__LINE__, kDistBinomial, 0.5, 1e300, kCdf, 1e300, kThrows},
      {__LINE__, kDistNegativeBinomial, 1e-12, 2, kCdf, 1e300, kThrows},
      {__LINE__, kDistGeometric, 1e-16, 0, kInv, 0.999, kThrows},  // past 2^53
      {__LINE__, kDistDiscreteUniform, -1e308, 1e308, kInv, 0.5, kThrows},
      {__LINE__, kDistNormal, 0, 1, kCdf, nan, kThrows},
      {__LINE__, kDistPoisson, nan, 0, kInv, 0.5, kThrows},
      {__LINE__, kDistUniform, 0, 1, kInv, nan, kThrows},
      {__LINE__, kDistBeta, 0.5, 2, kPdf, 0, kMissingValue},  // infinite at the end point
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const auto call = [&] {
      const DistributionParameters q = Prepared(r.id, r.p0, r.p1);
      return r.op == kPdf   ? Density(r.id, q, r.x)
             : r.op == kCdf ? Cdf(r.id, q, r.x)
                            : Inverse(r.id, q, r.x);
    };
    if (r.expected == kThrows) {
      EXPECT_THROW(call(), SilentAbort);
    } else {
      EXPECT_NEAR(call(), r.expected, 1e-12);
    }
  }
}

// The discrete inverse of every discrete id is the smallest count whose
// cumulative reaches p, and the Binomial cumulative the plain running sum of
// the masses, however the search and the sum cut their work short.
TEST(Distributions, ShortcutsKeepThePlainSearchAndSum) {
  struct Row {
    int line;
    int32_t id;
    double p0, p1;
  };
  constexpr Row kRows[] = {
      {__LINE__, kDistGeometric, 0.3, 0},
      {__LINE__, kDistGeometric, 0.001, 0},
      {__LINE__, kDistDiscreteUniform, 2, 9},
      {__LINE__, kDistDiscreteUniform, -3.5, 1e4},
      {__LINE__, kDistDiscreteUniform, 0.25, 0.5},
      {__LINE__, kDistBinomial, 0.35, 12},
      {__LINE__, kDistBinomial, 0.999, 300},
      {__LINE__, kDistBinomial, 0.01, 1000},
      {__LINE__, kDistPoisson, 3.5, 0},
      {__LINE__, kDistBernoulli, 0.3, 0},
      {__LINE__, kDistNegativeBinomial, 0.4, 3},
  };
  constexpr double kProbabilities[] = {1e-9, 0.01, 0.3, 0.5, 0.77, 0.999, 1 - 1e-12};
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const DistributionParameters q = Prepared(r.id, r.p0, r.p1);
    for (double p : kProbabilities) {
      double x = 0;
      while (!(Cdf(r.id, q, x) >= p)) x = x + 1;
      EXPECT_EQ(Inverse(r.id, q, p), x) << "p = " << p;
    }
    if (r.id != kDistBinomial) continue;
    double sum = 0;
    for (double k = 0; k <= r.p1; ++k) {
      sum = sum + Density(r.id, q, k);
      if (std::fmod(k, 97) == 0 || k == r.p1) {
        EXPECT_EQ(Cdf(r.id, q, k), sum) << "k = " << k;
      }
    }
  }
}

}  // namespace
}  // namespace zv

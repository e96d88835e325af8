#include "fitting/simplex.h"

#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <boost/math/tools/roots.hpp>
#include <cmath>
#include <vector>

#include "frame/missing_value.h"
#include "stats/distributions.h"

namespace zv {
namespace {

namespace bm = boost::math;

// Right-censored exponential: the maximum-likelihood mean has the closed form
// (sum of all times) / (number of failures).
TEST(SimplexSearch, CensoredExponentialReachesTheClosedForm) {
  const std::vector<double> x = {3, 5, 6, 8, 10, 11, 15, 20, 22, 23};
  const std::vector<double> c = {0, 1, 0, 0, 1, 0, 0, 1, 0, 0};
  double record[4] = {10.0, 0, 0, 0};  // a start away from the answer
  ASSERT_TRUE(SimplexSearch(kDistExponential, record, x.data(), c.data(), 10, -1));
  EXPECT_NEAR(record[0], 123.0 / 7.0, 1e-4);
}

// Right-censored two-parameter Weibull: the shape k solves
//   sum x^k ln x / sum x^k - 1/k = (1/r) sum_failures ln x
// and the scale is (sum x^k / r)^(1/k), r the failures. The equation is
// solved here by bisection with Boost's TOMS 748 root finder.
TEST(SimplexSearch, CensoredWeibullSolvesTheLikelihoodEquations) {
  const std::vector<double> x = {17.88, 28.92, 33.0,  41.52, 42.12, 45.6,  48.48, 51.84,
                                 51.96, 54.12, 55.56, 67.8,  68.64, 68.64, 68.88, 84.12};
  std::vector<double> c(x.size(), 0.0);
  c[5] = c[11] = c[15] = 1.0;
  double r = 0, sumLogFailures = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    if (c[i] == 0.0) r += 1, sumLogFailures += std::log(x[i]);
  }
  auto equation = [&](double k) {
    double a = 0, b = 0;
    for (double v : x) a += std::pow(v, k) * std::log(v), b += std::pow(v, k);
    return a / b - 1 / k - sumLogFailures / r;
  };
  boost::uintmax_t iterations = 200;
  auto root = bm::tools::toms748_solve(equation, 0.5, 20.0, bm::tools::eps_tolerance<double>(50),
                                       iterations);
  const double shape = (root.first + root.second) / 2;
  double b = 0;
  for (double v : x) b += std::pow(v, shape);
  const double scale = std::pow(b / r, 1 / shape);

  double record[4] = {1.5, 40.0, 0, 0};
  ASSERT_TRUE(SimplexSearch(kDistWeibull, record, x.data(), c.data(), int32_t(x.size()), -1));
  EXPECT_NEAR(record[0], shape, 2e-5 * shape);
  EXPECT_NEAR(record[1], scale, 2e-5 * scale);
}

// Normal with both left- and right-censored values: no closed form, so the
// found point is checked to be a maximum of the log-likelihood written
// independently with Boost's normal distribution.
TEST(SimplexSearch, DoublyCensoredNormalIsALikelihoodMaximum) {
  const std::vector<double> x = {2.1, 3.3, 4.0, 4.7, 5.2, 5.9, 6.4, 7.1, 7.3, kMissingValue};
  const std::vector<double> c = {-1, 0, 0, 0, 0, 0, 0, 1, 1, 0};
  auto logLikelihood = [&](double mu, double sd) {
    bm::normal_distribution<double> d(mu, sd);
    double sum = 0;
    for (size_t i = 0; i + 1 < x.size(); ++i) {
      sum += std::log(c[i] == 0  ? bm::pdf(d, x[i])
                      : c[i] < 0 ? bm::cdf(d, x[i])
                                 : bm::cdf(complement(d, x[i])));
    }
    return sum;
  };
  double record[4] = {5.0, 1.5, 0, 0};
  ASSERT_TRUE(SimplexSearch(kDistNormal, record, x.data(), c.data(), int32_t(x.size()), -1));
  const double best = logLikelihood(record[0], record[1]);
  for (double d : {-1e-3, 1e-3}) {
    EXPECT_LT(logLikelihood(record[0] + d, record[1]), best + 1e-9);
    EXPECT_LT(logLikelihood(record[0], record[1] + d), best + 1e-9);
  }
  std::vector<double> work(x.size());
  EXPECT_NEAR(NegativeLogLikelihood(kDistNormal, record, x.data(), c.data(), int32_t(x.size()),
                                    work.data(), -1, false),
              -best, 1e-4);  // the module's normal cumulative is Abramowitz and Stegun 26.2.17
  EXPECT_EQ(work.back(), kMissingValue);  // the missing row adds nothing
}

TEST(SimplexSearch, EdgesOfTheSearch) {
  const std::vector<double> x = {1, 2, 3, 4, 5};
  std::vector<double> work(x.size());
  {
    SCOPED_TRACE("outside the parameter space: the penalty for every value");
    const double bad[4] = {3.0, -1.0, 0, 0};
    EXPECT_DOUBLE_EQ(
        NegativeLogLikelihood(kDistNormal, bad, x.data(), nullptr, 5, work.data(), -1, false),
        5 * 999999999.9);
  }
  {
    SCOPED_TRACE("a start coordinate of 0 never moves");
    double record[4] = {0.0, 1.0, 0, 0};
    ASSERT_TRUE(SimplexSearch(kDistLaplace, record, x.data(), nullptr, 5, -1));
    EXPECT_EQ(record[0], 0.0);
  }
  {
    SCOPED_TRACE("all start rows penalised with a coordinate not above 0: the start stands");
    double record[4] = {-2.0, 0.0, 0, 0};
    ASSERT_TRUE(SimplexSearch(kDistGamma, record, x.data(), nullptr, 5, -1));
    EXPECT_EQ(record[0], -2.0);
    EXPECT_EQ(record[1], 0.0);
  }
  {
    SCOPED_TRACE("a discrete right-censored value contributes P(X >= x)");
    const double counts[2] = {2, 4};
    const double censor[2] = {0, 1};
    const double poisson[4] = {3.0, 0, 0, 0};
    double terms[2];
    NegativeLogLikelihood(kDistPoisson, poisson, counts, censor, 2, terms, -1, true);
    double below4 = 0;
    for (int k = 0; k < 4; ++k) below4 += std::exp(-3.0) * std::pow(3.0, k) / std::tgamma(k + 1);
    EXPECT_NEAR(terms[0], std::exp(-3.0) * 4.5, 1e-6);
    EXPECT_NEAR(terms[1], 1 - below4, 1e-9);
  }
}

}  // namespace
}  // namespace zv

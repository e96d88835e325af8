// The probability calculator: its output format, names, aliases and ids, the
// help of both commands, and the exit statuses.
#include "zivara/probability_calculator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/poisson.hpp>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "stats/distributions.h"

namespace {

struct Result {
  int status;
  std::string out, err;
};

Result Calculate(std::vector<std::string> args) {
  std::ostringstream out, err;
  const int status = RunProbabilityCommand(args, out, err);
  return {status, out.str(), err.str()};
}

TEST(ProbabilityCalculator, Output) {
  struct Row {
    int line;
    std::vector<std::string> args;
    std::string out;
  };
  const Row kRows[] = {
      // NormalCdf(0) is 0.5 exactly, NormalQuantile(1) the reserved 1e200.
      {__LINE__, {"fn", "NormalCdf", "0"}, "0.5\n"},
      {__LINE__, {"fn", "normalquantile", "1"}, "9.9999999999999997e+199\n"},
      {__LINE__, {"fn", "GammaFunction", "1"}, "1\n"},
      // Uniform on [-1, 3]: cdf 0.375 at 0.5 and 1.0 above; inverse of 0.25 is 0.
      {__LINE__, {"dist", "Uniform", "cdf", "-1", "3", "0.5", "7"}, "0.375\n1\n"},
      {__LINE__, {"dist", "20", "inv", "-1", "3", "0.25"}, "0\n"},
      {__LINE__, {"dist", "BERNOULLI", "pdf", "0.3", "0.5"}, "0.69999999999999996\n"},
      // Triangular takes three parameters; the mode at p = 1/3 of (0, 1, 3).
      {__LINE__, {"dist", "triangular", "inv", "0", "1", "3", "0.33333333333333331"}, "1\n"},
      // Names without blanks or punctuation, and common short names.
      {__LINE__, {"dist", "Student's t", "cdf", "7", "0"}, "0.5\n"},
      {__LINE__, {"dist", "t", "cdf", "7", "+0.0"}, "0.5\n"},
      {__LINE__, {"dist", "negative binomial", "pdf", "0.5", "2", "2"}, "0.25\n"},
      {__LINE__, {"dist", "nbinom", "pdf", "0.5", "2", "2"}, "0.25\n"},
      // Chi-square with 2 df: the finite sum 1 - e^-1 at x = 2.
      {__LINE__, {"dist", "chisquare", "cdf", "2", "2"}, "0.63212055882855767\n"},
      {__LINE__, {"dist", "chisq", "cdf", "2", "2E0"}, "0.63212055882855767\n"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    const Result r = Calculate(row.args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, row.out);
  }
}

TEST(ProbabilityCalculator, PreparesDerivedSlots) {
  // The Poisson cumulative needs exp(-p0) in its derived slot.
  const Result r = Calculate({"dist", "5", "cdf", "3.5", "4"});
  ASSERT_EQ(r.status, 0);
  EXPECT_NEAR(std::stod(r.out), boost::math::cdf(boost::math::poisson(3.5), 4.0), 1e-12);
}

// Ran, but without a result: status 3 and a word on stderr. Lines computed
// before stay printed.
TEST(ProbabilityCalculator, NoResult) {
  struct Row {
    int line;
    std::vector<std::string> args;
    std::string out, reason;
  };
  const Row kRows[] = {
      {__LINE__, {"fn", "NormalQuantile", "1.5"}, "", "domain error"},
      {__LINE__, {"dist", "Binomial", "pdf", "1", "10", "3"}, "", "domain error"},  // ln(1 - p0)
      {__LINE__, {"fn", "BetaQuantile", "1e-17", "2", "3"}, "", "domain error"},
      // These once ran until a time limit or printed nan and inf.
      {__LINE__, {"dist", "Binomial", "cdf", "0.5", "1e300", "1e300"}, "", "domain error"},
      {__LINE__, {"fn", "FQuantile", "0.5", "1e308", "1e308"}, "", "domain error"},
      {__LINE__, {"fn", "LogGamma", "1e308"}, "", "domain error"},
      {__LINE__, {"fn", "GammaFunction", "1e-320"}, "", "domain error"},
      // 1 / (4 k) at the mean, then exp((1000 - 0) / k) is out of range.
      {__LINE__,
       {"dist", "Logistic", "pdf", "0", "1", "0", "1000"},
       "0.45344984105854852\n",
       "domain error"},
      {__LINE__, {"fn", "StudentQuantile", "0.975", "0"}, "missing\n", "no value"},
      {__LINE__, {"dist", "Poisson", "inv", "250", "0.5"}, "missing\n", "no value for 1 of 1"},
      {__LINE__,
       {"dist", "Bernoulli", "pdf", "0.3", "0", "2"},
       "0.69999999999999996\nmissing\n",
       "no value for 1 of 2"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    const Result r = Calculate(row.args);
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.out, row.out);
    EXPECT_NE(r.err.find(row.reason), std::string::npos) << r.err;
  }
}

TEST(ProbabilityCalculator, RefusedInput) {
  struct Row {
    int line;
    std::vector<std::string> args;
    std::string reason;
  };
  const Row kRows[] = {
      {__LINE__, {"fn", "NormalCdf", "1.5x"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "0x10"}, "not a number"},  // the sheet refuses hex too
      {__LINE__, {"fn", "NormalCdf", "nan"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "-inf"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", " 1"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "1e"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "."}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "1e999"}, "not a finite number"},
      {__LINE__, {"fn", "IncompleteBeta", "0.5", "1"}, "takes 3 arguments: x a b"},
      {__LINE__, {"fn", "Erf", "1"}, "unknown function"},
      {__LINE__, {"fn"}, "usage"},
      {__LINE__, {"dist", "Cauchy", "pdf", "0", "1", "0"}, "unknown distribution"},
      {__LINE__, {"dist", "22", "pdf", "0", "1", "0"}, "unknown distribution"},
      {__LINE__, {"dist", "", "pdf", "0", "1", "0"}, "unknown distribution"},
      {__LINE__, {"dist", "Normal", "quantile", "0", "1", "0.5"}, "unknown operation"},
      {__LINE__, {"dist", "Normal", "cdf", "0", "1"}, "takes 2 parameters and at least one X"},
      {__LINE__, {"tables"}, "usage"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    const Result r = Calculate(row.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find(row.reason), std::string::npos) << r.err;
    EXPECT_EQ(r.out, "");
  }
}

// Help on both commands: every distribution with its id and its parameters'
// meanings (from the module's table), every function with its arguments.
TEST(ProbabilityCalculator, Help) {
  const Result dist = Calculate({"dist", "--help"});
  EXPECT_EQ(dist.status, 0);
  for (int32_t id = 0; id < zv::kDistributionCount; ++id) {
    const zv::DistributionParameterInfo& info = zv::DistributionUserParameters(id);
    const std::string expected =
        "P" + std::to_string(info.count - 1) + " " + std::string(info.meaning[info.count - 1]);
    EXPECT_NE(dist.out.find(expected), std::string::npos) << "id " << id;
  }
  EXPECT_NE(dist.out.find("Negative Binomial"), std::string::npos);
  EXPECT_NE(dist.out.find("of X itself, not of ln X"), std::string::npos);
  EXPECT_NE(dist.out.find("(also t, student"), std::string::npos);
  const Result fn = Calculate({"fn", "-h"});
  EXPECT_EQ(fn.status, 0);
  EXPECT_NE(fn.out.find("  IncompleteBeta x a b\n"), std::string::npos);
  EXPECT_EQ(std::count(fn.out.begin(), fn.out.end(), '\n'), 2 + 11);
}

}  // namespace

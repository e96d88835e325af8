// The probability calculator: its output format, names and ids, exit
// statuses, and the time limit.
#include "zivara/probability_calculator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/poisson.hpp>
#include <sstream>
#include <string>
#include <vector>

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
      {__LINE__, {"fn", "StudentQuantile", "0.975", "0"}, "missing\n"},
      {__LINE__, {"fn", "GammaFunction", "1"}, "1\n"},
      // Uniform on [-1, 3]: cdf 0.375 at 0.5 and 1.0 above; inverse of 0.25 is 0.
      {__LINE__, {"dist", "Uniform", "cdf", "-1", "3", "0.5", "7"}, "0.375\n1\n"},
      {__LINE__, {"dist", "20", "inv", "-1", "3", "0.25"}, "0\n"},
      // Bernoulli (one parameter) by name in another case; 2 is outside.
      {__LINE__, {"dist", "BERNOULLI", "pdf", "0.3", "0.5", "2"}, "0.69999999999999996\nmissing\n"},
      // Triangular takes three parameters; the mode at p = 1/3 of (0, 1, 3).
      {__LINE__, {"dist", "triangular", "inv", "0", "1", "3", "0.33333333333333331"}, "1\n"},
      {__LINE__, {"dist", "Student's t", "cdf", "7", "0"}, "0.5\n"},
      {__LINE__, {"dist", "negative binomial", "pdf", "0.5", "2", "2"}, "0.25\n"},
      {__LINE__, {"dist", "Poisson", "inv", "250", "0.5"}, "missing\n"},
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

TEST(ProbabilityCalculator, DomainError) {
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"fn", "NormalQuantile", "1.5"},
           {"dist", "Binomial", "pdf", "1", "10", "3"},  // ln(1 - p0) with p0 = 1
           {"fn", "BetaQuantile", "1e-17", "2", "3"},
           // These once ran until the time limit or printed nan and inf.
           {"dist", "Binomial", "cdf", "0.5", "1e300", "1e300"},
           {"fn", "FQuantile", "0.5", "1e308", "1e308"},
           {"fn", "LogGamma", "1e308"},
           {"fn", "GammaFunction", "1e-320"}}) {
    SCOPED_TRACE(args[1]);
    const Result r = Calculate(args);
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.err, "domain error\n");
    EXPECT_EQ(r.out, "");
  }
  // Lines computed before the abort stay: exp((1000 - 0) / 0.55...) is out.
  const Result partial = Calculate({"dist", "Logistic", "pdf", "0", "1", "1", "1000"});
  EXPECT_EQ(partial.status, 3);
  EXPECT_EQ(std::count(partial.out.begin(), partial.out.end(), '\n'), 1);
}

TEST(ProbabilityCalculator, RefusedInput) {
  struct Row {
    int line;
    std::vector<std::string> args;
    std::string reason;
  };
  const Row kRows[] = {
      {__LINE__, {"fn", "NormalCdf", "1.5x"}, "not a number"},
      {__LINE__, {"fn", "NormalCdf", "nan"}, "not a finite number"},
      {__LINE__, {"fn", "NormalCdf", "1e999"}, "not a finite number"},
      {__LINE__, {"fn", "IncompleteBeta", "0.5", "1"}, "takes 3 arguments"},
      {__LINE__, {"fn", "Erf", "1"}, "unknown function"},
      {__LINE__, {"dist", "Cauchy", "pdf", "0", "1", "0"}, "unknown distribution"},
      {__LINE__, {"dist", "22", "pdf", "0", "1", "0"}, "unknown distribution"},
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

}  // namespace

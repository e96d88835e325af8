// Descriptive statistics and bin counts.
#include "services/descriptive_statistics.h"

#include <gtest/gtest.h>

#include <boost/math/statistics/univariate_statistics.hpp>
#include <cmath>
#include <random>
#include <vector>

#include "frame/messages.h"
#include "services/movable_block.h"
#include "stats/guarded_math.h"
#include "support/module_fixture.h"

namespace {

using zv::kMissingValue;
constexpr double m = kMissingValue;

class Summary : public zvtest::ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    state_ = &NewState(0);
  }
  std::vector<double> Compute(const std::vector<double>& values,
                              const int32_t* flags = zv::kAllStatistics) {
    std::vector<double> results(zv::kStatisticsRecordSize, 0.0);
    state_->orderReady = 0;
    zv::ComputeSummary(values.data(), static_cast<int32_t>(values.size()), flags, results.data(),
                       0);
    return results;
  }
  zv::ProcedureState* state_ = nullptr;
};

// 2, 4, 4, 4, 5, 5, 7, 9 in mixed order with missing rows. Worked by hand:
// c = 8, sum 40, mean 5; deviations -3 -1 -1 -1 0 0 2 4 give s2 = 32,
// s3 = 42, s4 = 356. variance 32/7; skewness 42 x 8 / (6 x 7 x (32/7) x sd)
// = 1.75 / sd; kurtosis (3 x (-7) x 7 + 9 x 8 x 356 / ((32/7)^2 x 7)) / 30
// = (-147 + 175.21875) / 30 = 0.940625. Sorted, x(4), x(5) = 4, 5 give the
// median 4.5; c is a multiple of 4, so the lower quartile is the mean of
// x(2), x(3) = 4 and the upper of x(6), x(7) = 6. The longest run is 4 (three
// times). Geometric mean 201600^(1/8).
TEST_F(Summary, HandWorkedColumn) {
  const std::vector<double> values{5, m, 9, 4, 2, 4, m, 7, 5, 4};
  const std::vector<double> r = Compute(values);
  const double sd = std::sqrt(32.0 / 7.0);
  struct Row {
    int line;
    int index;
    double expected;
  };
  const Row kRows[] = {
      {__LINE__, zv::kStatCount, 8.0},
      {__LINE__, zv::kStatMean, 5.0},
      {__LINE__, zv::kStatMedian, 4.5},
      {__LINE__, zv::kStatMode, 4.0},
      {__LINE__, zv::kStatGeometricMean, 4.603215596046737},
      {__LINE__, zv::kStatVariance, 32.0 / 7.0},
      {__LINE__, zv::kStatStandardDeviation, 2.138089935299395},
      {__LINE__, zv::kStatStandardError, 0.7559289460184544},
      {__LINE__, zv::kStatMinimum, 2.0},
      {__LINE__, zv::kStatMaximum, 9.0},
      {__LINE__, zv::kStatRange, 7.0},
      {__LINE__, zv::kStatLowerQuartile, 4.0},
      {__LINE__, zv::kStatUpperQuartile, 6.0},
      {__LINE__, zv::kStatInterquartileRange, 2.0},
      {__LINE__, zv::kStatSkewness, 1.75 / sd},
      {__LINE__, zv::kStatStandardizedSkewness, 1.75 / sd * std::sqrt(8.0 / 6.0)},
      {__LINE__, zv::kStatKurtosis, 0.940625},
      {__LINE__, zv::kStatStandardizedKurtosis, 0.940625 / std::sqrt(3.0)},
      {__LINE__, zv::kStatCoefficientOfVariation, sd / 5.0 * 100.0},
      {__LINE__, zv::kStatSum, 40.0},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    EXPECT_NEAR(r[row.index], row.expected, 1e-12 * std::fabs(row.expected));
  }
  // The order was built on the way, ascending with the missing rows last.
  EXPECT_EQ(state_->orderReady, 1);
  zv::LockedBlock<int32_t> order(state_->order);
  ASSERT_EQ(order.size(), values.size());
  EXPECT_EQ(values[order[0]], 2.0);
  EXPECT_EQ(values[order[7]], 9.0);
  EXPECT_EQ(values[order[8]], m);
  EXPECT_EQ(values[order[9]], m);
}

// Reference: Boost.Math univariate statistics. Its skewness g1 and excess
// kurtosis g2 are the population forms; the sample forms are
// G1 = g1 sqrt(n (n - 1)) / (n - 2) and
// G2 = ((n + 1) g2 + 6) (n - 1) / ((n - 2) (n - 3)).
// Its interquartile range takes the same positions as ours except for
// n = 4k + 1, which is left out.
TEST_F(Summary, RandomColumnsAgainstBoost) {
  std::mt19937 random(11);
  std::lognormal_distribution<double> draw(1.0, 0.8);
  for (int n : {4, 6, 7, 12, 31, 500}) {
    SCOPED_TRACE(n);
    std::vector<double> values(static_cast<size_t>(n));
    for (double& v : values) v = draw(random);
    const std::vector<double> r = Compute(values);
    namespace bs = boost::math::statistics;
    const double c = n;
    const double g1 = bs::skewness(values), g2 = bs::excess_kurtosis(values);
    EXPECT_NEAR(r[zv::kStatMean], bs::mean(values), 1e-13 * r[zv::kStatMean]);
    EXPECT_NEAR(r[zv::kStatVariance], bs::sample_variance(values), 1e-12 * r[zv::kStatVariance]);
    EXPECT_NEAR(r[zv::kStatSkewness], g1 * std::sqrt(c * (c - 1)) / (c - 2), 1e-10);
    EXPECT_NEAR(r[zv::kStatKurtosis], ((c + 1) * g2 + 6) * (c - 1) / ((c - 2) * (c - 3)), 1e-10);
    std::vector<double> copy = values;
    EXPECT_EQ(r[zv::kStatMedian], bs::median(copy));
    if (n % 4 != 1) {
      copy = values;
      EXPECT_NEAR(r[zv::kStatInterquartileRange], bs::interquartile_range(copy), 1e-14);
    }
  }
}

// Positions: k = trunc(c / 4), h = trunc(c / 2), u = trunc(3c / 4), a pair
// averaged when c is a multiple of 4 (quartiles) or even (median). With
// values 1..c, x(i) = i.
TEST_F(Summary, QuartilePositionsForSmallCounts) {
  struct Row {
    int line;
    int c;
    double lower, median, upper;
  };
  constexpr Row kRows[] = {
      {__LINE__, 1, 1.0, 1.0, 1.0}, {__LINE__, 2, 1.0, 1.5, 2.0}, {__LINE__, 3, 1.0, 2.0, 3.0},
      {__LINE__, 4, 1.5, 2.5, 3.5}, {__LINE__, 5, 2.0, 3.0, 4.0}, {__LINE__, 6, 2.0, 3.5, 5.0},
      {__LINE__, 7, 2.0, 4.0, 6.0}, {__LINE__, 8, 2.5, 4.5, 6.5}, {__LINE__, 9, 3.0, 5.0, 7.0},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    std::vector<double> values;
    for (int i = row.c; i >= 1; --i) values.push_back(i);
    const std::vector<double> r = Compute(values);
    EXPECT_EQ(r[zv::kStatLowerQuartile], row.lower);
    EXPECT_EQ(r[zv::kStatMedian], row.median);
    EXPECT_EQ(r[zv::kStatUpperQuartile], row.upper);
  }
}

// The longest run wins; a tie of longest runs leaves no mode; the run still
// open at the last value counts, but not when it is a single value.
TEST_F(Summary, ModeRuns) {
  struct Row {
    int line;
    std::vector<double> values;
    double mode;
  };
  const Row kRows[] = {
      {__LINE__, {3, 3, 3, 3}, 3.0},
      {__LINE__, {1, 1, 2}, 1.0},
      {__LINE__, {1, 2, 2}, 2.0},
      {__LINE__, {1, 1, 2, 2}, m},
      {__LINE__, {1, 2, 3}, m},
      {__LINE__, {2, 1}, 1.0},  // the last single value is not compared
      {__LINE__, {7}, m},
      {__LINE__, {5, m, 1, 5, 1, 5, m}, 5.0},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(Compute(row.values)[zv::kStatMode], row.mode);
  }
}

TEST_F(Summary, EdgeCases) {
  {
    SCOPED_TRACE("four equal values");
    const std::vector<double> r = Compute({2.5, 2.5, 2.5, 2.5});
    EXPECT_EQ(r[zv::kStatVariance], 0.0);
    EXPECT_EQ(r[zv::kStatStandardDeviation], 0.0);
    EXPECT_EQ(r[zv::kStatCoefficientOfVariation], 0.0);
    EXPECT_EQ(r[zv::kStatSkewness], m);
    EXPECT_EQ(r[zv::kStatStandardizedSkewness], m);
    EXPECT_EQ(r[zv::kStatKurtosis], m);
    EXPECT_EQ(r[zv::kStatStandardizedKurtosis], m);
  }
  {
    SCOPED_TRACE("no values");
    const std::vector<double> r = Compute({m, m});
    EXPECT_EQ(r[zv::kStatCount], 0.0);
    EXPECT_EQ(r[zv::kStatSum], 0.0);
    for (int i = 1; i < zv::kStatSum; ++i) EXPECT_EQ(r[i], m) << i;
  }
  {
    SCOPED_TRACE("one value");
    const std::vector<double> r = Compute({m, -4.0});
    EXPECT_EQ(r[zv::kStatVariance], 0.0);
    EXPECT_EQ(r[zv::kStatStandardError], 0.0);
    EXPECT_EQ(r[zv::kStatMedian], -4.0);
    EXPECT_EQ(r[zv::kStatGeometricMean], m);  // a value at or below 0
    EXPECT_EQ(r[zv::kStatSkewness], m);
  }
  {
    // Skewness from three values, kurtosis from four. 1, 2, 4: mean 7/3,
    // deviations -4/3, -1/3, 5/3, s3 = 60/27, variance 7/3, so the skewness
    // is 3 s3 / (1 x 2 x variance x sd) = 10 / (7 sqrt(7/3)).
    SCOPED_TRACE("two and three values");
    EXPECT_EQ(Compute({1.0, 2.0})[zv::kStatSkewness], m);
    const std::vector<double> r = Compute({1.0, 2.0, 4.0});
    EXPECT_NEAR(r[zv::kStatSkewness], 10 / (7 * std::sqrt(7.0 / 3)), 1e-15);
    EXPECT_EQ(r[zv::kStatKurtosis], m);
    EXPECT_EQ(r[zv::kStatStandardizedKurtosis], m);
  }
  {
    SCOPED_TRACE("mean 0 and a zero value");
    const std::vector<double> r = Compute({-1.0, 0.0, 1.0});
    EXPECT_EQ(r[zv::kStatCoefficientOfVariation], m);
    EXPECT_EQ(r[zv::kStatGeometricMean], m);
    EXPECT_EQ(r[zv::kStatSkewness], 0.0);
  }
  {
    SCOPED_TRACE("only the flagged results");
    int32_t flags[zv::kStatisticsRecordSize] = {};
    flags[zv::kStatStandardError] = 1;
    const std::vector<double> r = Compute({1.0, 2.0, 3.0}, flags);
    EXPECT_EQ(r[zv::kStatCount], 3.0);
    EXPECT_DOUBLE_EQ(r[zv::kStatStandardError], 1.0 / std::sqrt(3.0));
    for (int i = 1; i < zv::kStatisticsRecordSize; ++i) {
      if (i != zv::kStatStandardError) {
        EXPECT_EQ(r[i], m) << i;
      }
    }
    EXPECT_EQ(state_->orderReady, 0) << "no order statistic asked for: no sort";
  }
  // A geometric mean past the guarded range.
  EXPECT_THROW(Compute({1e100, 1e100}), zv::SilentAbort);
}

TEST_F(Summary, WithoutMemoryForTheOrderTheOrderResultsStayMissing) {
  WinFailAllocationsAfter(0);
  const std::vector<double> r = Compute({3.0, 1.0, 2.0});
  EXPECT_EQ(LastMessage(), zv::LoadText(1001));
  EXPECT_EQ(r[zv::kStatMean], 2.0);
  for (int i : {zv::kStatMedian, zv::kStatMode, zv::kStatLowerQuartile, zv::kStatUpperQuartile,
                zv::kStatInterquartileRange}) {
    EXPECT_EQ(r[i], m) << i;
  }
}

// Bins are open below and closed above. Against the rule read literally (the
// first bin whose upper edge lower + (j + 1) w is at least the value; missing
// values not counted), on the limits, on values that sit on the edges as
// computed, and on random values.
TEST(CountBins, EdgesAsComputed) {
  struct Row {
    int line;
    double lower, upper;
    int32_t bins;
  };
  // In the last row 0.401 + 2 w = 3.7189999999999994 < upper.
  constexpr Row kRows[] = {{__LINE__, 0.0, 0.3, 3},
                           {__LINE__, 0.1, 0.7, 7},
                           {__LINE__, -4.7, 1.8, 25},
                           {__LINE__, 0.401, 3.719, 2}};
  std::mt19937 random(3);
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.line);
    const double w = (row.upper - row.lower) / row.bins;
    std::vector<double> values{row.upper, row.lower, m};
    for (int32_t j = 0; j < row.bins; ++j) {
      values.push_back(row.lower + (j + 1) * w);
      values.push_back(std::nextafter(row.lower + (j + 1) * w, 1e300));
    }
    std::uniform_real_distribution<double> draw(row.lower - 1, row.upper + 1);
    for (int i = 0; i < 200; ++i) values.push_back(draw(random));

    std::vector<int32_t> expected(static_cast<size_t>(row.bins), 0);
    int32_t expectedBelow = 0, expectedAbove = 0;
    for (double v : values) {
      if (v == m) continue;
      if (v <= row.lower) {
        ++expectedBelow;
      } else if (v > row.upper) {
        ++expectedAbove;
      } else {
        int32_t j = 0;
        while (j < row.bins - 1 && row.lower + (j + 1) * w < v) ++j;
        ++expected[static_cast<size_t>(j)];  // past the last edge: the last bin
      }
    }
    std::vector<int32_t> counts(static_cast<size_t>(row.bins), -1);
    int32_t below = -1, above = -1;
    zv::CountBins(values.data(), static_cast<int32_t>(values.size()), counts.data(), &below, &above,
                  row.lower, row.upper, row.bins);
    EXPECT_EQ(counts, expected);
    EXPECT_EQ(below, expectedBelow);
    EXPECT_EQ(above, expectedAbove);
  }
}

}  // namespace

// Product-limit estimates, the mean survival time and its error, and the
// percentiles, on small groups worked out by hand with exact fractions.
#include "survival/product_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "frame/host_records.h"

namespace zv {
namespace {

constexpr double kMissing = kMissingValue;

// One group given in survival order: times, and censoring values (empty: no
// censoring column).
struct Group {
  std::vector<double> time;
  std::vector<double> censor;
  std::vector<int32_t> rows;

  Group(std::vector<double> t, std::vector<double> c) : time(std::move(t)), censor(std::move(c)) {
    rows.resize(time.size());
    std::iota(rows.begin(), rows.end(), 0);
  }
  SurvivalGroup View() const {
    return {rows.data(), static_cast<int32_t>(rows.size()), time.data(),
            censor.empty() ? nullptr : censor.data()};
  }
};

struct Estimates {
  std::vector<int32_t> atRisk;
  std::vector<double> survival, error, hazard;
  double mean;
};

Estimates Estimate(const Group& g) {
  const size_t n = g.time.size();
  Estimates e{std::vector<int32_t>(n), std::vector<double>(n), std::vector<double>(n),
              std::vector<double>(n), 0.0};
  e.mean = EstimateProductLimit(
      g.View(), {e.atRisk.data(), e.survival.data(), e.error.data(), e.hazard.data()});
  return e;
}

double MeanErrorSweep(const Group& g, const std::vector<double>& survival) {
  std::vector<double> scratch(g.time.size());
  return MeanSurvivalErrorSweep(g.View(), survival.data(), scratch.data());
}

// Times 2, 3, 3, 5+, 6, 8+ (a tie of failures, a withdrawal in the middle and
// one at the end). By hand, with m at risk before each row:
//   row  m  step   survival          Greenwood sum      error
//   2    6  5/6    5/6               1/30               sqrt(1/30) 5/6
//   3    5  4/5    2/3 -> 1/2 (tie)  1/12 -> 1/6 (tie)  sqrt(1/6) / 2
//   3    4  3/4    1/2               1/6                sqrt(1/6) / 2
//   5+   3  1      1/2               1/6                sqrt(1/6) / 2
//   6    2  1/2    1/4               2/3                sqrt(2/3) / 4
//   8+   1  1      1/4               2/3 (m = 1 adds 0) sqrt(2/3) / 4
// Mean: 2 x 1 + 1 x 5/6 + 3 x 1/2 + 2 x 1/4 (the last withdrawal extends the
// area) = 29/6.
// Error: the areas beyond the distinct failure times 2, 3, 6 are 17/6, 2 and
// 1/2; with m = 5, 3, 1 rows behind and c = 1, 2, 1 tied rows,
// v = (17/6)^2/(5 x 6) + 2^2/(3 x 5) x 2 + (1/2)^2/(1 x 2) = 25/27, and with
// a last withdrawal the error is sqrt(v) without the factor nf/(nf-1).
const Group kLastWithdrawn({2, 3, 3, 5, 6, 8}, {0, 0, 0, 1, 0, 1});

TEST(ProductLimit, HandWorkedGroupWithTiesAndWithdrawals) {
  const Estimates e = Estimate(kLastWithdrawn);
  struct Row {
    int line;
    int32_t atRisk;
    double survival, error, hazard;
  };
  const Row kRows[] = {
      {__LINE__, 5, 5.0 / 6, std::sqrt(1.0 / 30) * 5 / 6, -std::log(5.0 / 6)},
      {__LINE__, 4, 0.5, std::sqrt(1.0 / 6) / 2, -std::log(2.0 / 3)},  // hazard not carried back
      {__LINE__, 3, 0.5, std::sqrt(1.0 / 6) / 2, std::log(2.0)},
      {__LINE__, 2, 0.5, std::sqrt(1.0 / 6) / 2, std::log(2.0)},
      {__LINE__, 1, 0.25, std::sqrt(2.0 / 3) / 4, std::log(4.0)},
      {__LINE__, 0, 0.25, std::sqrt(2.0 / 3) / 4, std::log(4.0)},
  };
  for (size_t k = 0; k < std::size(kRows); ++k) {
    SCOPED_TRACE(kRows[k].line);
    EXPECT_EQ(e.atRisk[k], kRows[k].atRisk);
    EXPECT_NEAR(e.survival[k], kRows[k].survival, 1e-15);
    EXPECT_NEAR(e.error[k], kRows[k].error, 1e-15);
    EXPECT_NEAR(e.hazard[k], kRows[k].hazard, 1e-15);
  }
  EXPECT_NEAR(e.mean, 29.0 / 6, 1e-14);
  EXPECT_NEAR(MeanSurvivalErrorDirect(kLastWithdrawn.View(), e.survival.data()),
              std::sqrt(25.0 / 27), 1e-15);
  EXPECT_NEAR(MeanErrorSweep(kLastWithdrawn, e.survival), std::sqrt(25.0 / 27), 1e-15);
}

// The same times with the last row a failure: survival reaches 0 there, the
// hazard is missing and the error 0. The areas and v are as above (the last
// failure adds no area beyond itself), nf = 5, and the error takes the
// factor: sqrt(25/27 x 5/4) = sqrt(125/108).
TEST(ProductLimit, LastObservationFailed) {
  const Group g({2, 3, 3, 5, 6, 8}, {0, 0, 0, 1, 0, 0});
  const Estimates e = Estimate(g);
  EXPECT_EQ(e.survival[5], 0.0);
  EXPECT_EQ(e.error[5], 0.0);
  EXPECT_EQ(e.hazard[5], kMissing);
  EXPECT_NEAR(e.mean, 29.0 / 6, 1e-14);
  EXPECT_NEAR(MeanSurvivalErrorDirect(g.View(), e.survival.data()), std::sqrt(125.0 / 108), 1e-15);
  EXPECT_NEAR(MeanErrorSweep(g, e.survival), std::sqrt(125.0 / 108), 1e-15);
}

// Rows at one time carry the estimates after the whole tie. A failure and a
// withdrawal at 4: the failure stands first, both at 2/3. Tied failures at
// the end, 2, 5, 5: 2/3, then 1/3 and 0 by row, both 0 after the tie, with the
// error 0 as well (Greenwood sum 1/6 + 1/2, times a survival of 0).
TEST(ProductLimit, TiesCarryTheEstimatesAfterTheTie) {
  struct Row {
    int line;
    Group g;
    std::vector<double> survival, error;
  };
  const Row kRows[] = {
      {__LINE__, Group({4, 4, 9}, {0, 1, 0}), {2.0 / 3, 2.0 / 3, 0}, {}},
      {__LINE__, Group({2, 5, 5}, {0, 0, 0}), {2.0 / 3, 0, 0}, {std::sqrt(1.0 / 6) * 2 / 3, 0, 0}},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const Estimates e = Estimate(r.g);
    for (size_t k = 0; k < r.survival.size(); ++k) EXPECT_NEAR(e.survival[k], r.survival[k], 1e-15);
    for (size_t k = 0; k < r.error.size(); ++k) EXPECT_NEAR(e.error[k], r.error[k], 1e-15);
  }
}

// A negative censoring value is a failure in the estimates, but not in the
// walk of the error pass. Times 2, 4 (value -1), 6: survival 2/3, 1/3, 0 and
// mean 2 + 2 x 2/3 + 2 x 1/3 = 4. In the error pass the walk skips the row at
// 4, so the area beyond both 2 and 4 is (6 - 2) x 2/3 = 8/3:
// v = (8/3)^2/(2 x 3) + (8/3)^2/(1 x 2) = 128/27, error sqrt(128/27 x 3/2) = 8/3.
TEST(ProductLimit, NegativeCensoringValue) {
  const Group g({2, 4, 6}, {0, -1, 0});
  const Estimates e = Estimate(g);
  EXPECT_NEAR(e.survival[1], 1.0 / 3, 1e-15);
  EXPECT_NEAR(e.mean, 4.0, 1e-14);
  EXPECT_NEAR(MeanSurvivalErrorDirect(g.View(), e.survival.data()), 8.0 / 3, 1e-14);
  EXPECT_NEAR(MeanErrorSweep(g, e.survival), 8.0 / 3, 1e-14);
}

// One row, or withdrawals only: the survival stays where it is (0 after a
// single failure), the mean is the last time, the error 0.
TEST(ProductLimit, SingleRowsAndWithdrawalsOnly) {
  struct Row {
    int line;
    Group g;
    double survival, mean;
  };
  const Row kRows[] = {
      {__LINE__, Group({7}, {0}), 0.0, 7.0},
      {__LINE__, Group({7}, {1}), 1.0, 7.0},
      {__LINE__, Group({3, 5, 9}, {1, 1, 1}), 1.0, 9.0},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const Estimates e = Estimate(r.g);
    for (double s : e.survival) EXPECT_EQ(s, r.survival);
    EXPECT_EQ(e.mean, r.mean);
    EXPECT_EQ(MeanSurvivalErrorDirect(r.g.View(), e.survival.data()), 0.0);
    EXPECT_EQ(MeanErrorSweep(r.g, e.survival), 0.0);
  }
}

// Percentiles of the hand-worked group: survival 5/6, 1/2, 1/2, (1/2), 1/4,
// (1/4) at times 2, 3, 3, 5+, 6, 8+.
//   P 50: estimate 3 (first S <= .5); window S >= .55 at 2 (5/6) and S <= .45
//         at 6 (1/4): density (5/6 - 1/4)/(6 - 2) = 7/48, error
//         (sqrt(1/6)/2) / (7/48).
//   P 75: estimate 3; window 2 (5/6) and 3 (1/2): density 1/3.
//   P 25: estimate 6; no survival at or below .20: error blank.
//   P 10: never reached: both blank.
//   P 99: estimate 2 (5/6 <= .99), but no failure reaches 1.04: error blank.
TEST(ProductLimit, Percentiles) {
  const Estimates e = Estimate(kLastWithdrawn);
  struct Row {
    int line;
    double percentile, estimate, error;
  };
  const Row kRows[] = {
      {__LINE__, 50, 3, std::sqrt(1.0 / 6) / 2 / (7.0 / 48)},
      {__LINE__, 75, 3, std::sqrt(1.0 / 6) / 2 * 3},
      {__LINE__, 25, 6, kMissing},
      {__LINE__, 10, kMissing, kMissing},
      {__LINE__, 99, 2, kMissing},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const PercentileEstimate p =
        EstimatePercentile(kLastWithdrawn.View(), e.survival.data(), e.error.data(), r.percentile);
    EXPECT_EQ(p.estimate, r.estimate);
    if (r.error == kMissing) {
      EXPECT_EQ(p.error, kMissing);
    } else {
      EXPECT_NEAR(p.error, r.error, 1e-14);
    }
  }
}

// The sweep against the direct form on random groups with many ties and
// withdrawals, the last row failed or withdrawn, and negative censoring values.
TEST(ProductLimit, ErrorSweepMatchesDirectForm) {
  std::mt19937 random(20240611);
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const int n = 1 + static_cast<int>(random() % 60);
    const int distinct = 1 + static_cast<int>(random() % 12);
    std::vector<double> time(n), censor(n);
    for (int k = 0; k < n; ++k) {
      time[k] = 1 + static_cast<double>(random() % distinct) * 0.5;
      const unsigned kind = random() % 10;
      censor[k] = kind < 4 ? 1.0 : kind == 4 ? -2.0 : 0.0;
    }
    // Survival order: time, then failures (value <= 0) before withdrawals.
    std::vector<int> idx(n);
    std::iota(idx.begin(), idx.end(), 0);
    std::sort(idx.begin(), idx.end(), [&](int a, int b) {
      if (time[a] != time[b]) return time[a] < time[b];
      return (censor[a] > 0) < (censor[b] > 0);
    });
    std::vector<double> t(n), c(n);
    for (int k = 0; k < n; ++k) {
      t[k] = time[idx[k]];
      c[k] = censor[idx[k]];
    }
    const Group g(t, trial % 7 == 0 ? std::vector<double>{} : c);
    const Estimates e = Estimate(g);
    const double direct = MeanSurvivalErrorDirect(g.View(), e.survival.data());
    EXPECT_NEAR(MeanErrorSweep(g, e.survival), direct, 1e-12 * std::max(1.0, direct));
  }
}

}  // namespace
}  // namespace zv

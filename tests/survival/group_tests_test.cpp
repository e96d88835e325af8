// The Logrank and Wilcoxon (Gehan) sums and chi-squares: a two-group set
// worked out by hand, the sweep against the direct form, the invariance of
// both statistics under a recoding of the groups, and the survival order.
#include "survival/group_tests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "frame/host_records.h"
#include "survival/life2_state.h"
#include "survival/survival_order.h"

namespace zv {
namespace {

// Rows of several groups, ordered with OrderSurvivalRowsArrays.
struct Sample {
  std::vector<double> time, censor;
  std::vector<int32_t> group, order, sizes;
  std::vector<SurvivalSortKey> keys;

  Sample(std::vector<double> t, std::vector<double> c, std::vector<int32_t> g, int32_t groups)
      : time(std::move(t)), censor(std::move(c)), group(std::move(g)) {
    const size_t n = time.size();
    order.resize(n);
    keys.resize(n);
    sizes.assign(groups, 0);
    for (int32_t gi : group) {
      if (gi != kExcludedRow) ++sizes[gi];
    }
    OrderSurvivalRowsArrays(static_cast<int32_t>(n), time.data(), censor.data(), group.data(),
                            keys.data(), order.data());
  }
  SurvivalSample View() const {
    return {order.data(), time.data(), censor.data(), sizes.data(),
            static_cast<int32_t>(sizes.size())};
  }
};

struct Sums {
  std::vector<double> logrank, wilcoxon, logrankCov, wilcoxonCov;
};

Sums Accumulate(const Sample& s, bool sweep) {
  const size_t g = s.sizes.size();
  Sums out{std::vector<double>(g), std::vector<double>(g), std::vector<double>(g * g),
           std::vector<double>(g * g)};
  std::vector<int32_t> position(g), end(g), failures(g), atRisk(g), active(g);
  std::vector<double> next(g);
  const GroupTestWork work{position.data(), end.data(),    next.data(),
                           failures.data(), atRisk.data(), active.data()};
  const GroupTestSums sums{out.logrank.data(), out.wilcoxon.data(), out.logrankCov.data(),
                           out.wilcoxonCov.data()};
  if (sweep) {
    AccumulateGroupTestsSweep(s.View(), work, sums);
  } else {
    AccumulateGroupTestsDirect(s.View(), work, sums);
  }
  return out;
}

double ChiSquare(const std::vector<double>& covariance, const std::vector<double>& score) {
  const int32_t g = static_cast<int32_t>(score.size());
  std::vector<double> matrix((g - 1) * (g - 1)), inverse((g - 1) * (g - 1));
  return GroupChiSquare(covariance.data(), score.data(), g, matrix.data(), inverse.data());
}

// Group A: 3, 5+, 7; group B: 1, 3, 4+, 6. The risk sets by hand, with r the
// rows at risk, d the failures, e_A = r_A D / R, the Logrank variance term
// r_A r_B (R-D) D / (R^2) and the Wilcoxon score weighted by R and its
// variance term by R^2:
//   T  r_A r_B  R  d_A d_B D   d_A - e_A   variance    Wilcoxon   its variance
//   1   3   4   7   0   1  1   -3/7        12/49       -3         12
//   3   3   3   6   1   1  2    0          2/5          0         72/5
//   4   2   2   4   0   0  0    0          0            0         0
//   5   2   1   3   0   0  0    0          0            0         0
//   6   1   1   2   0   1  1   -1/2        1/4         -1         1
//   7   1   0   1   1   0  1    0          (R = 1)      0         (R = 1)
// Logrank: score -13/14, variance 877/980, chi-square 845/877.
// Wilcoxon: score -4, variance 137/5, chi-square 80/137.
TEST(GroupTests, TwoGroupsByHand) {
  const Sample s({3, 5, 7, 1, 3, 4, 6}, {0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 1, 1, 1}, 2);
  for (bool sweep : {false, true}) {
    SCOPED_TRACE(sweep);
    const Sums sums = Accumulate(s, sweep);
    EXPECT_NEAR(sums.logrank[0], -13.0 / 14, 1e-15);
    EXPECT_NEAR(sums.logrank[1], 13.0 / 14, 1e-15);
    EXPECT_NEAR(sums.logrankCov[0], 877.0 / 980, 1e-15);
    EXPECT_NEAR(sums.logrankCov[1], -877.0 / 980, 1e-15);
    EXPECT_NEAR(sums.wilcoxon[0], -4.0, 1e-14);
    EXPECT_NEAR(sums.wilcoxonCov[0], 137.0 / 5, 1e-13);
    EXPECT_NEAR(ChiSquare(sums.logrankCov, sums.logrank), 845.0 / 877, 1e-14);
    EXPECT_NEAR(ChiSquare(sums.wilcoxonCov, sums.wilcoxon), 80.0 / 137, 1e-14);
  }
}

// Random groups with ties, withdrawals at failure times and at times of their
// own, excluded rows and empty trailing groups. The sweep must add exactly
// the terms of the direct form, cell for cell.
TEST(GroupTests, SweepMatchesDirectForm) {
  std::mt19937 random(77);
  for (int trial = 0; trial < 200; ++trial) {
    SCOPED_TRACE(trial);
    const int n = 2 + static_cast<int>(random() % 80);
    const int groups = 2 + static_cast<int>(random() % 5);
    const int distinct = 1 + static_cast<int>(random() % 15);
    std::vector<double> time(n), censor(n);
    std::vector<int32_t> group(n);
    for (int k = 0; k < n; ++k) {
      time[k] = 1 + static_cast<double>(random() % distinct);
      censor[k] = random() % 3 == 0 ? 1.0 : 0.0;
      group[k] = random() % 9 == 0 ? kExcludedRow : static_cast<int32_t>(random() % groups);
    }
    const Sample s(time, censor, group, groups);
    const Sums direct = Accumulate(s, false);
    const Sums sweep = Accumulate(s, true);
    EXPECT_EQ(sweep.logrank, direct.logrank);
    EXPECT_EQ(sweep.wilcoxon, direct.wilcoxon);
    EXPECT_EQ(sweep.logrankCov, direct.logrankCov);
    EXPECT_EQ(sweep.wilcoxonCov, direct.wilcoxonCov);
  }
}

// Leaving out another group (by recoding, so that a different one comes
// last) changes neither chi-square.
TEST(GroupTests, ChiSquaresDoNotDependOnTheGroupCoding) {
  std::mt19937 random(5);
  const int n = 60;
  std::vector<double> time(n), censor(n);
  std::vector<int32_t> group(n);
  for (int k = 0; k < n; ++k) {
    group[k] = static_cast<int32_t>(random() % 3);
    time[k] = 1 + static_cast<double>(random() % 20) + group[k] * 2;
    censor[k] = random() % 4 == 0 ? 1.0 : 0.0;
  }
  const Sums first = Accumulate(Sample(time, censor, group, 3), true);
  for (const std::vector<int32_t>& recode : {std::vector<int32_t>{2, 0, 1}, {1, 2, 0}, {0, 2, 1}}) {
    std::vector<int32_t> recoded(n);
    for (int k = 0; k < n; ++k) recoded[k] = recode[group[k]];
    const Sums other = Accumulate(Sample(time, censor, recoded, 3), true);
    const double logrank = ChiSquare(first.logrankCov, first.logrank);
    const double wilcoxon = ChiSquare(first.wilcoxonCov, first.wilcoxon);
    EXPECT_GT(logrank, 1.0);
    EXPECT_NEAR(ChiSquare(other.logrankCov, other.logrank), logrank, 1e-9 * logrank);
    EXPECT_NEAR(ChiSquare(other.wilcoxonCov, other.wilcoxon), wilcoxon, 1e-9 * wilcoxon);
  }
}

// Rows: by group, then time, failures before withdrawals, then row; excluded
// rows last, among themselves by time (missing last), kind and row.
TEST(SurvivalOrder, GroupTimeKindRow) {
  const double m = kMissingValue;
  const std::vector<double> time = {5, 3, 5, 3, m, 1, 5, 2};
  const std::vector<double> censor = {1, 0, 0, 1, 0, 0, 0, 0};
  const std::vector<int32_t> group = {0, 1, 0, 0, kExcludedRow, kExcludedRow, 0, 1};
  std::vector<int32_t> order(8);
  std::vector<SurvivalSortKey> keys(8);
  OrderSurvivalRowsArrays(8, time.data(), censor.data(), group.data(), keys.data(), order.data());
  EXPECT_EQ(order, (std::vector<int32_t>{3, 2, 6, 0, 7, 1, 5, 4}));
  // Without a censoring column withdrawals do not exist and rows keep row order.
  OrderSurvivalRowsArrays(8, time.data(), nullptr, group.data(), keys.data(), order.data());
  EXPECT_EQ(order, (std::vector<int32_t>{3, 0, 2, 6, 7, 1, 5, 4}));
}

}  // namespace
}  // namespace zv

// The Logrank and Wilcoxon (Gehan) sums and chi-squares: a two-group set
// worked out by hand, the sweep against the direct form written out here, the
// invariance of both statistics under a recoding of the groups, and the
// survival order.
#include "survival/group_tests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "frame/host_records.h"
#include "life2_fixture.h"
#include "services/matrix.h"
#include "survival/life2.h"
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

Sums Accumulate(const Sample& s) {
  const size_t g = s.sizes.size();
  Sums out{std::vector<double>(g), std::vector<double>(g), std::vector<double>(g * g),
           std::vector<double>(g * g)};
  std::vector<GroupSweepEntry> entries(g);
  std::vector<int32_t> lists(3 * g);
  AccumulateGroupTests(
      s.View(), {entries.data(), lists.data()},
      {out.logrank.data(), out.wilcoxon.data(), out.logrankCov.data(), out.wilcoxonCov.data()});
  return out;
}

// The comparison as the textbook states it: at each distinct time T every
// row of every group is counted, r_g at risk (time >= T) and d_g failed at T,
// and every cell receives its term.
Sums Direct(const Sample& s) {
  const size_t g = s.sizes.size();
  Sums out{std::vector<double>(g), std::vector<double>(g), std::vector<double>(g * g),
           std::vector<double>(g * g)};
  std::vector<double> times;
  for (size_t k = 0; k < s.order.size(); ++k) {
    if (s.group[s.order[k]] != kExcludedRow) times.push_back(s.time[s.order[k]]);
  }
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  for (double t : times) {
    std::vector<double> r(g), d(g);
    for (size_t row = 0; row < s.time.size(); ++row) {
      if (s.group[row] == kExcludedRow) continue;
      if (s.time[row] >= t) ++r[s.group[row]];
      if (s.time[row] == t && s.censor[row] == 0) ++d[s.group[row]];
    }
    const double R = std::accumulate(r.begin(), r.end(), 0.0);
    const double D = std::accumulate(d.begin(), d.end(), 0.0);
    for (size_t i = 0; i < g; ++i) {
      out.logrank[i] += d[i] - r[i] * D / R;
      out.wilcoxon[i] += (d[i] - r[i] * D / R) * R;
      if (R == 1) continue;
      for (size_t j = 0; j < g; ++j) {
        const double a = (i == j ? 1.0 : 0.0) - r[i] / R;
        out.logrankCov[i * g + j] += a * r[j] * (R - D) * D / (R * (R - 1));
        out.wilcoxonCov[i * g + j] += a * r[j] * (R - D) * R * D / (R - 1);
      }
    }
  }
  return out;
}

// score' V^-1 score by the explicit inverse, as the statistic is defined.
double ChiSquareByInverse(const std::vector<double>& covariance, const std::vector<double>& score) {
  const int32_t g = static_cast<int32_t>(score.size());
  const int32_t m = g - 1;
  std::vector<double> matrix(m * m), inverse(m * m);
  for (int32_t i = 0; i < m; ++i) {
    for (int32_t j = 0; j < m; ++j) matrix[i * m + j] = covariance[i * g + j];
  }
  if (InvertMatrix(matrix.data(), inverse.data(), m) == 0) return kMissingValue;
  double chiSquare = 0;
  for (int32_t i = 0; i < m; ++i) {
    for (int32_t j = 0; j < m; ++j) chiSquare += inverse[i * m + j] * score[j] * score[i];
  }
  return chiSquare;
}

void ExpectClose(const std::vector<double>& ours, const std::vector<double>& direct,
                 const char* what) {
  double scale = 1;
  for (double v : direct) scale = std::max(scale, std::fabs(v));
  for (size_t k = 0; k < ours.size(); ++k) {
    EXPECT_NEAR(ours[k], direct[k], 1e-12 * scale) << what << " cell " << k;
  }
}

double ChiSquare(const std::vector<double>& covariance, const std::vector<double>& score) {
  const int32_t g = static_cast<int32_t>(score.size());
  std::vector<double> matrix((g - 1) * (g - 1)), solution(g - 1);
  std::vector<int32_t> permutation(g - 1);
  return GroupChiSquare(covariance.data(), score.data(), g, matrix.data(), solution.data(),
                        permutation.data());
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
  for (const Sums& sums : {Direct(s), Accumulate(s)}) {
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
// own, excluded rows, empty groups and groups that end early. The sweep sums
// the same terms as the direct form, grouped otherwise: the cells agree to
// 1e-12 of the largest, and the chi-squares, solved from the factors against
// the explicit inverse of the statistic's definition, print the same to six
// significant digits.
TEST(GroupTests, SweepMatchesDirectForm) {
  std::mt19937 random(77);
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const int n = 2 + static_cast<int>(random() % 120);
    const int groups = 2 + static_cast<int>(random() % (trial < 250 ? 6 : 40));
    const int distinct = 1 + static_cast<int>(random() % 25);
    std::vector<double> time(n), censor(n);
    std::vector<int32_t> group(n);
    for (int k = 0; k < n; ++k) {
      group[k] = random() % 9 == 0 ? kExcludedRow : static_cast<int32_t>(random() % groups);
      // Some groups end early, so that groups leave the risk set at times apart.
      const int reach = group[k] == kExcludedRow ? distinct : 1 + (group[k] * 7) % distinct;
      time[k] = 1 + static_cast<double>(random() % reach) / 4;
      censor[k] = random() % 3 == 0 ? 1.0 : 0.0;
    }
    const Sample s(time, censor, group, groups);
    const Sums direct = Direct(s);
    const Sums sweep = Accumulate(s);
    ExpectClose(sweep.logrank, direct.logrank, "logrank score");
    ExpectClose(sweep.wilcoxon, direct.wilcoxon, "wilcoxon score");
    ExpectClose(sweep.logrankCov, direct.logrankCov, "logrank covariance");
    ExpectClose(sweep.wilcoxonCov, direct.wilcoxonCov, "wilcoxon covariance");
    if (groups > 8) continue;  // larger sets are often singular: the message box
    for (const auto& [ours, theirs] :
         {std::pair{ChiSquare(sweep.logrankCov, sweep.logrank),
                    ChiSquareByInverse(direct.logrankCov, direct.logrank)},
          std::pair{ChiSquare(sweep.wilcoxonCov, sweep.wilcoxon),
                    ChiSquareByInverse(direct.wilcoxonCov, direct.wilcoxon)}}) {
      char a[32], b[32];
      std::snprintf(a, sizeof a, "%.6g", ours);
      std::snprintf(b, sizeof b, "%.6g", theirs);
      EXPECT_STREQ(a, b);
    }
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
  const Sums first = Accumulate(Sample(time, censor, group, 3));
  for (const std::vector<int32_t>& recode : {std::vector<int32_t>{2, 0, 1}, {1, 2, 0}, {0, 2, 1}}) {
    std::vector<int32_t> recoded(n);
    for (int k = 0; k < n; ++k) recoded[k] = recode[group[k]];
    const Sums other = Accumulate(Sample(time, censor, recoded, 3));
    const double logrank = ChiSquare(first.logrankCov, first.logrank);
    const double wilcoxon = ChiSquare(first.wilcoxonCov, first.wilcoxon);
    EXPECT_GT(logrank, 1.0);
    EXPECT_NEAR(ChiSquare(other.logrankCov, other.logrank), logrank, 1e-9 * logrank);
    EXPECT_NEAR(ChiSquare(other.wilcoxonCov, other.wilcoxon), wilcoxon, 1e-9 * wilcoxon);
  }
}

// An identifier picked as the group: past kMaxComparedGroups the comparison
// is refused in its pane, while the estimates stand (no status).
using TooManyGroups = zvtest::Life2Fixture;
TEST_F(TooManyGroups, ComparisonRefusedEstimatesShown) {
  std::string csv = "T,C,Id\n";
  for (int k = 0; k <= 2 * kMaxComparedGroups + 1; ++k) {
    csv += std::to_string(1 + k % 17) + "," + std::to_string(k % 3 == 0) + "," +
           std::to_string(k / 2) + "\n";
  }
  const ProcedureState& state = Run(csv, "T", "C", "Id");
  ASSERT_EQ(state.status, 0);
  EXPECT_EQ(Get(state, kGroupCount), kMaxComparedGroups + 1);
  EXPECT_EQ(Get(state, kLogrankChiSquare), kMissingValue);
  EXPECT_EQ(Get(state, kWilcoxonPValue), kMissingValue);
  const std::string pane = Life2ComparisonText(0);
  EXPECT_NE(pane.find("take at most 1000 groups"), std::string::npos);
  EXPECT_EQ(pane.find("Chi-square"), std::string::npos);
  EXPECT_NE(Life2SummaryText(0).find("Mean"), std::string::npos);
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

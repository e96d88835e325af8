// The Logrank and Wilcoxon (Gehan) tests of equal survival in G groups, over
// plain arrays: score vectors and covariance matrices summed over the
// distinct observed times, then a (G-1)-dimensional chi-square of each.
#pragma once

#include <cstdint>

namespace zv {

// All analysed rows in survival order: groups one after the other, within a
// group time ascending with failures before withdrawals at one time.
struct SurvivalSample {
  const int32_t* order;      // row numbers from 0, by position
  const double* time;        // by row
  const double* censor;      // by row; nullptr without a censoring column
  const int32_t* groupSize;  // rows of each group
  int32_t groupCount;
};

// Zero-filled by the caller: G, G, G x G and G x G doubles, row order.
struct GroupTestSums {
  double* logrankScore;
  double* wilcoxonScore;
  double* logrankCovariance;
  double* wilcoxonCovariance;
};

// G entries each.
struct GroupTestWork {
  int32_t* position;  // next position of each group in `order`
  int32_t* end;       // position behind each group's last row
  double* nextTime;
  int32_t* failures;  // at the current time
  int32_t* atRisk;    // at the current time
  int32_t* active;    // groups with rows left (the sweep only)
};

// The direct form rescans every row of every group at each distinct time;
// the sweep walks each group's rows once and updates only the groups still
// at risk, which adds exactly the same terms in the same cells.
void AccumulateGroupTestsDirect(const SurvivalSample& sample, const GroupTestWork& work,
                                const GroupTestSums& sums);
void AccumulateGroupTestsSweep(const SurvivalSample& sample, const GroupTestWork& work,
                               const GroupTestSums& sums);

// score' V^-1 score over the first G-1 groups; the last is left out, since its
// score is minus the sum of the others. `matrix` and `inverse` hold (G-1)^2
// doubles each. kMissingValue when the inversion failed (a message has been
// shown).
double GroupChiSquare(const double* covariance, const double* score, int32_t groupCount,
                      double* matrix, double* inverse);

}  // namespace zv

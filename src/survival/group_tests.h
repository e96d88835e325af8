// The Logrank and Wilcoxon (Gehan) tests of equal survival in G groups, over
// plain arrays: score vectors and covariance matrices summed over the
// distinct observed times, then a (G-1)-dimensional chi-square of each.
#pragma once

#include <cstdint>

namespace zv {

// Beyond this many groups the comparison is refused (the estimates still
// show): the covariance matrices take 8 G^2 bytes each and their
// factoring grows with G^3, about a second at 1000 groups. A test of so many groups is
// nearly always an identifier column picked as the group.
inline constexpr int32_t kMaxComparedGroups = 1000;

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

// The sweep's record of one group. Each group's terms are summed lazily: its
// rows at risk stay constant between its own times, so at each of them the
// sweep adds r times what the running sums over the times (kept in
// `mark`, as they stood at the group's last change) have gained since.
struct GroupSweepEntry {
  int32_t position;  // next position in `order`
  int32_t end;       // position behind the group's last row
  int32_t atRisk;
  int32_t failures;  // at the current time
  int32_t leaving;   // rows at the current time
  int32_t activeSlot;
  int64_t lastChange;  // number of the time of the last change, 0 before any
  long double mark[6];
  long double logrankScore, wilcoxonScore;
  long double logrankVariance, wilcoxonVariance;  // diagonal terms r_i c
  long double logrankSelf, wilcoxonSelf;          // r_i^2 c / R
};

// G entries and 3 G int32 of lists (heap, active and changed groups).
struct GroupTestWork {
  GroupSweepEntry* groups;
  int32_t* lists;
};

// One sweep over the distinct times in time order (a heap of the groups by
// their next time). The covariance terms of a time are c (r_i delta_ij -
// r_i r_j / R), so every cell is r_i r_j (or r_i) times a sum over the times
// in which both groups kept their number at risk: each cell is brought up to
// date when one of its two groups changes, in O(G) per group and time rather
// than O(G^2) per time. The running sums are long doubles, so that the
// differences taken from them keep the accuracy of the direct sums.
void AccumulateGroupTests(const SurvivalSample& sample, const GroupTestWork& work,
                          const GroupTestSums& sums);

// score' V^-1 score over the first G-1 groups; the last is left out, since its
// score is minus the sum of the others. V is factored once (LuDecompose) and
// solved for the score, a quarter of the work of the explicit inverse.
// `matrix` holds (G-1)^2 doubles, `solution` G-1 and `permutation` G-1.
// kMissingValue when the factoring failed (a message has been shown).
double GroupChiSquare(const double* covariance, const double* score, int32_t groupCount,
                      double* matrix, double* solution, int32_t* permutation);

}  // namespace zv

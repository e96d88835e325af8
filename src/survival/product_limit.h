// Product-limit (Kaplan-Meier) estimation over plain arrays: one group's rows
// in survival order in, the per-position columns and the mean survival time
// with its standard error out. The state-bound operations that drive these
// stand in life2.h.
#pragma once

#include <cstdint>
#include <memory>

namespace zv {

// One group's rows in survival order: time ascending and, at one time,
// failures before withdrawals. Columns are indexed by row, the outputs by
// position within the group.
struct SurvivalGroup {
  const int32_t* rows;  // `count` row numbers from 0
  int32_t count;
  const double* time;    // time column, by row; every time of the group is > 0
  const double* censor;  // censoring column, by row; nullptr without one
};

// A withdrawn (censored) row has a censoring value above 0; any other value
// marks a failure, and without a censoring column every row is a failure.
inline bool IsWithdrawn(const SurvivalGroup& g, int32_t position) {
  return g.censor != nullptr && g.censor[g.rows[position]] > 0.0;
}

// A group's times and censoring values copied into position order, for
// the passes that walk a group more than once: they then read memory in
// order instead of one scattered row at a time, and give the same results.
// Without memory for the copy the view is the group itself.
class GatheredGroup {
 public:
  explicit GatheredGroup(const SurvivalGroup& group);
  const SurvivalGroup& view() const { return view_; }

 private:
  std::unique_ptr<int32_t[]> positions_;
  std::unique_ptr<double[]> values_;  // times, then censoring values
  SurvivalGroup view_;
};

struct ProductLimitColumns {
  int32_t* atRisk;           // rows of the group behind the position
  double* survival;          // tied rows carry the value of the last of them
  double* survivalError;     // Greenwood's formula, carried back like survival
  double* cumulativeHazard;  // -log survival, row by row; kMissingValue at 0
};

// Fills the columns for positions 0 .. count-1 and returns the mean survival
// time: the area under the curve, extended to a last withdrawal.
double EstimateProductLimit(const SurvivalGroup& group, const ProductLimitColumns& out);

// Standard error of the mean survival time from the final `survival`.
// The direct form recomputes, for every distinct failure time, the area
// beyond it by a walk over the whole group (quadratic); the sweep takes the
// same areas as suffix sums. `scratch` holds `count` doubles. Both give the
// same value up to rounding in the last places.
double MeanSurvivalErrorDirect(const SurvivalGroup& group, const double* survival);
double MeanSurvivalErrorSweep(const SurvivalGroup& group, const double* survival, double* scratch);

struct PercentileEstimate {
  double estimate;  // first failure time with survival at or below P/100
  double error;     // kMissingValue when it cannot be computed
};

// The time by which the survival function falls to `percentile` percent, with
// its error from the survival error over a density estimated between the
// failures at P/100 + 0.05 and P/100 - 0.05 (no interpolation).
PercentileEstimate EstimatePercentile(const SurvivalGroup& group, const double* survival,
                                      const double* survivalError, double percentile);

}  // namespace zv

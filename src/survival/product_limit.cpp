#include "survival/product_limit.h"

#include <new>

#include "frame/host_records.h"
#include "stats/guarded_math.h"

namespace zv {
namespace {

// The walk of the error pass counts a row as a failure only when there is no
// censoring column or its value is exactly 0; a negative value is a failure
// in the tables but not here.
bool FailsInErrorWalk(const SurvivalGroup& g, int32_t position) {
  return g.censor == nullptr || g.censor[g.rows[position]] == 0.0;
}

double TimeAt(const SurvivalGroup& g, int32_t position) {
  return g.time[g.rows[position]];
}

int32_t FailureCount(const SurvivalGroup& g) {
  int32_t failures = 0;
  for (int32_t k = 0; k < g.count; ++k) {
    if (!IsWithdrawn(g, k)) ++failures;
  }
  return failures;
}

// The error from the sum v: with a last withdrawal as it stands, otherwise
// with the small-sample factor nf / (nf - 1).
double FinishMeanError(double v, bool lastCensored, int32_t failures) {
  if (lastCensored) return GuardedSqrt(v);
  if (failures < 2) return 0.0;
  return GuardedSqrt(v * failures / (failures - 1));
}

}  // namespace

GatheredGroup::GatheredGroup(const SurvivalGroup& group) : view_(group) {
  const size_t count = group.count > 0 ? static_cast<size_t>(group.count) : 0;
  const size_t columns = group.censor != nullptr ? 2 : 1;
  positions_.reset(new (std::nothrow) int32_t[count]);
  values_.reset(new (std::nothrow) double[columns * count]);
  if (positions_ == nullptr || values_ == nullptr) return;
  double* time = values_.get();
  double* censor = group.censor != nullptr ? time + count : nullptr;
  for (size_t k = 0; k < count; ++k) {
    const int32_t row = group.rows[k];
    positions_[k] = static_cast<int32_t>(k);
    time[k] = group.time[row];
    if (censor != nullptr) censor[k] = group.censor[row];
  }
  view_ = {positions_.get(), group.count, time, censor};
}

double EstimateProductLimit(const SurvivalGroup& group, const ProductLimitColumns& out) {
  // Two passes over the times and one over the kinds: gathered once.
  const GatheredGroup gathered(group);
  const SurvivalGroup& g = gathered.view();
  const int32_t n = g.count;
  double varianceSum = 0.0;
  double prevTime = 0.0;
  double prevSurvival = 1.0;
  double area = 0.0;
  for (int32_t k = 0; k < n; ++k) {
    const int32_t m = n - k;  // at risk before this row
    const int32_t d = IsWithdrawn(g, k) ? 0 : 1;
    const double t = TimeAt(g, k);
    out.atRisk[k] = m - 1;
    double s = static_cast<double>(m - d) / m;
    if (k >= 1) s *= out.survival[k - 1];
    out.survival[k] = s;
    // Greenwood's sum one row at a time; the last row adds nothing, so the
    // error does not grow there.
    if (m != 1) varianceSum += d / ((m - 1.0) * m);
    out.survivalError[k] = GuardedSqrt(varianceSum) * s;
    out.cumulativeHazard[k] = s <= 0.0 ? kMissingValue : -GuardedLog(s);
    if (d == 1) {
      area += (t - prevTime) * prevSurvival;
      prevTime = t;
      prevSurvival = s;
    } else if (m == 1) {
      area += (t - prevTime) * prevSurvival;
    }
  }
  // Rows tied at one time carry the product limit over the whole tie.
  for (int32_t k = n - 2; k >= 0; --k) {
    if (TimeAt(g, k) == TimeAt(g, k + 1)) {
      out.survival[k] = out.survival[k + 1];
      out.survivalError[k] = out.survivalError[k + 1];
    }
  }
  return area;
}

double MeanSurvivalErrorDirect(const SurvivalGroup& g, const double* survival) {
  const int32_t n = g.count;
  double v = 0.0;
  int32_t c = 1;
  bool lastCensored = false;
  for (int32_t i = 0; i < n; ++i) {
    if (IsWithdrawn(g, i)) continue;
    bool tiedLater = false;
    for (int32_t j = i + 1; j < n; ++j) {
      if (TimeAt(g, j) == TimeAt(g, i)) tiedLater = true;
    }
    if (tiedLater) {
      ++c;
      continue;
    }
    double area = 0.0;
    double prevTime = 0.0;
    double prevSurvival = 1.0;
    for (int32_t j = 0; j < n; ++j) {
      const double t = TimeAt(g, j);
      if (FailsInErrorWalk(g, j)) {
        if (j >= i + 1) area += (t - prevTime) * prevSurvival;
        prevTime = t;
        prevSurvival = survival[j];
      } else if (j == n - 1) {
        lastCensored = true;
        area += (t - prevTime) * prevSurvival;
      }
    }
    const int32_t m = n - i - 1;
    const int32_t w = m + c;
    if (m != 0 && w != 0) {
      v += area * area / (static_cast<double>(m) * w) * c;
      c = 1;
    }
  }
  return FinishMeanError(v, lastCensored, FailureCount(g));
}

// The area beyond the failure at position i is the sum of the walk's
// increments at the failures after i, plus the stretch to a last row that is
// not a failure. The increments do not depend on i, so one forward pass
// gives them and one backward pass their suffix sums; the row loop is then
// the direct one with the area looked up. Times ascend within the group, so
// "a later row has the same time" is a look at the next row.
double MeanSurvivalErrorSweep(const SurvivalGroup& group, const double* survival, double* scratch) {
  const GatheredGroup gathered(group);
  const SurvivalGroup& g = gathered.view();
  const int32_t n = g.count;
  if (n == 0) return FinishMeanError(0.0, false, 0);
  double prevTime = 0.0;
  double prevSurvival = 1.0;
  for (int32_t j = 0; j < n; ++j) {
    scratch[j] = 0.0;
    if (FailsInErrorWalk(g, j)) {
      const double t = TimeAt(g, j);
      scratch[j] = (t - prevTime) * prevSurvival;
      prevTime = t;
      prevSurvival = survival[j];
    }
  }
  const bool lastIsFailure = FailsInErrorWalk(g, n - 1);
  const double tail = lastIsFailure ? 0.0 : (TimeAt(g, n - 1) - prevTime) * prevSurvival;
  for (int32_t j = n - 2; j >= 0; --j) scratch[j] += scratch[j + 1];

  double v = 0.0;
  int32_t c = 1;
  bool lastCensored = false;
  for (int32_t i = 0; i < n; ++i) {
    if (IsWithdrawn(g, i)) continue;
    if (i + 1 < n && TimeAt(g, i + 1) == TimeAt(g, i)) {
      ++c;
      continue;
    }
    if (!lastIsFailure) lastCensored = true;
    const double area = (i + 1 < n ? scratch[i + 1] : 0.0) + tail;
    const int32_t m = n - i - 1;
    const int32_t w = m + c;
    if (m != 0 && w != 0) {
      v += area * area / (static_cast<double>(m) * w) * c;
      c = 1;
    }
  }
  return FinishMeanError(v, lastCensored, FailureCount(g));
}

PercentileEstimate EstimatePercentile(const SurvivalGroup& g, const double* survival,
                                      const double* survivalError, double percentile) {
  const double p = percentile * 0.01;
  double upperS = kMissingValue;
  double upperT = kMissingValue;
  double lowerS = kMissingValue;
  double lowerT = kMissingValue;
  double errorAt = kMissingValue;
  PercentileEstimate result{kMissingValue, kMissingValue};
  for (int32_t k = 0; k < g.count; ++k) {
    if (IsWithdrawn(g, k)) continue;
    const double t = TimeAt(g, k);
    const double s = survival[k];
    if (s >= p + 0.05) {
      upperS = s;
      upperT = t;
    }
    if ((result.estimate == kMissingValue || t == result.estimate) && s <= p) {
      result.estimate = t;
      errorAt = survivalError[k];
    }
    if ((lowerS == kMissingValue || t == lowerT) && s <= p - 0.05) {
      lowerS = s;
      lowerT = t;
    }
  }
  if (upperS != kMissingValue && lowerS != kMissingValue && lowerT != kMissingValue &&
      upperT != kMissingValue) {
    const double density = (upperS - lowerS) / (lowerT - upperT);
    if (errorAt != 0.0 && density != 0.0) result.error = errorAt / density;
  }
  return result;
}

}  // namespace zv

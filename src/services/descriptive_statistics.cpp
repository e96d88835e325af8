#include "services/descriptive_statistics.h"

#include <cmath>
#include <initializer_list>

#include "frame/host_records.h"
#include "frame/module_state.h"
#include "services/movable_block.h"
#include "services/row_order.h"
#include "stats/guarded_math.h"

namespace zv {
namespace {

bool Wanted(const int32_t* flags, std::initializer_list<int> indexes) {
  for (int i : indexes) {
    if (flags[i]) return true;
  }
  return false;
}

// The order statistics: median, mode and quartiles from the ascending
// order of the state. `count` is the number of values other than
// MissingValue, which the order lists first.
void OrderResults(const double* values, int32_t n, int32_t count, const int32_t* flags,
                  double* results, int32_t slot) {
  if (slot < 0 || slot >= kSlotCount || gStates[slot] == nullptr) return;
  ProcedureState& state = *gStates[slot];
  if (!state.orderReady && SortOrderNumeric(values, slot, n, 0) == 0) return;
  LockedBlock<int32_t> order(state.order);
  // An order left from other data is of no use; better no value than a wrong one.
  if (!order || order.size() < static_cast<size_t>(count)) return;
  for (int32_t i = 0; i < count; ++i) {
    if (order[i] < 0 || order[i] >= n || values[order[i]] == kMissingValue) return;
  }
  // x(i), the i-th smallest value from 1, the position held to at least 1.
  auto x = [&](int32_t i) { return values[order[i < 1 ? 0 : i - 1]]; };
  auto middle = [&](int32_t i, bool pair) { return pair ? (x(i) + x(i + 1)) / 2 : x(i + 1); };

  const bool quarters = count % 4 == 0;
  const double lower = middle(count / 4, quarters);
  const double upper = middle(3 * count / 4, quarters);
  if (flags[kStatMedian]) results[kStatMedian] = middle(count / 2, count % 2 == 0);
  if (flags[kStatLowerQuartile]) results[kStatLowerQuartile] = lower;
  if (flags[kStatUpperQuartile]) results[kStatUpperQuartile] = upper;
  if (flags[kStatInterquartileRange]) results[kStatInterquartileRange] = upper - lower;

  if (flags[kStatMode]) {
    // Runs of equal values: a run that ends takes over when longer than the
    // longest so far (clearing a tie) and makes a tie when as long. The run
    // still open at the last value counts too, unless it is a single value.
    int32_t longest = 0;
    bool tie = false;
    double mode = kMissingValue;
    auto endRun = [&](int32_t length, double value) {
      if (length > longest) {
        longest = length;
        mode = value;
        tie = false;
      } else if (length == longest) {
        tie = true;
      }
    };
    int32_t run = 1;
    for (int32_t i = 2; i <= count; ++i) {
      if (x(i) == x(i - 1)) {
        ++run;
      } else {
        endRun(run, x(i - 1));
        run = 1;
      }
    }
    if (run > 1) endRun(run, x(count));
    results[kStatMode] = tie ? kMissingValue : mode;
  }
}

}  // namespace

void ComputeSummary(const double* values, int32_t n, const int32_t* flags, double* results,
                    int32_t slot) {
  for (int i = 0; i < kStatisticsRecordSize; ++i) results[i] = kMissingValue;
  if (values == nullptr || n < 0) n = 0;

  int32_t count = 0;
  double sum = 0.0;
  double minimum = 0.0, maximum = 0.0;
  bool positive = true;  // every value above 0, so the geometric mean exists
  double sumLogs = 0.0;
  const bool wantLogs = flags[kStatGeometricMean] != 0;
  for (int32_t i = 0; i < n; ++i) {
    const double v = values[i];
    if (v == kMissingValue) continue;
    if (count == 0 || v < minimum) minimum = v;
    if (count == 0 || v > maximum) maximum = v;
    ++count;
    sum += v;
    if (wantLogs && positive) {
      if (v > 0.0) {
        sumLogs += GuardedLog(v);
      } else {
        positive = false;
      }
    }
  }
  results[kStatCount] = count;
  if (count == 0) {
    if (flags[kStatSum]) results[kStatSum] = 0.0;
    return;
  }
  const double c = count;
  const double mean = sum / c;
  if (flags[kStatSum]) results[kStatSum] = sum;
  if (flags[kStatMean]) results[kStatMean] = mean;
  if (flags[kStatMinimum]) results[kStatMinimum] = minimum;
  if (flags[kStatMaximum]) results[kStatMaximum] = maximum;
  if (flags[kStatRange]) results[kStatRange] = maximum - minimum;
  if (wantLogs && positive) results[kStatGeometricMean] = GuardedExp(sumLogs / c);

  if (Wanted(flags, {kStatVariance, kStatStandardDeviation, kStatStandardError, kStatSkewness,
                     kStatStandardizedSkewness, kStatKurtosis, kStatStandardizedKurtosis,
                     kStatCoefficientOfVariation})) {
    double s2 = 0.0, s3 = 0.0, s4 = 0.0;
    for (int32_t i = 0; i < n; ++i) {
      if (values[i] == kMissingValue) continue;
      const double d = values[i] - mean;
      const double d2 = d * d;
      s2 += d2;
      s3 += d2 * d;
      s4 += d2 * d2;
    }
    const double variance = count < 2 ? 0.0 : s2 / (c - 1.0);
    const double sd = GuardedSqrt(variance);
    if (flags[kStatVariance]) results[kStatVariance] = variance;
    if (flags[kStatStandardDeviation]) results[kStatStandardDeviation] = sd;
    if (flags[kStatStandardError]) results[kStatStandardError] = sd / GuardedSqrt(c);
    if (flags[kStatCoefficientOfVariation] && mean != 0.0) {
      results[kStatCoefficientOfVariation] = sd / mean * 100.0;
    }
    // Sample skewness and excess kurtosis (the bias-corrected G1 and G2).
    if (sd > 0.0 && count > 2) {
      const double skewness = s3 / ((c - 2.0) * (c - 1.0) * variance * sd) * c;
      if (flags[kStatSkewness]) results[kStatSkewness] = skewness;
      if (flags[kStatStandardizedSkewness]) {
        results[kStatStandardizedSkewness] = skewness * GuardedSqrt(c / 6.0);
      }
    }
    if (sd > 0.0 && count > 3) {
      const double kurtosis =
          (3.0 * (1.0 - c) * (c - 1.0) + (c + 1.0) * c * s4 / (variance * variance * (c - 1.0))) /
          ((c - 2.0) * (c - 3.0));
      if (flags[kStatKurtosis]) results[kStatKurtosis] = kurtosis;
      if (flags[kStatStandardizedKurtosis]) {
        results[kStatStandardizedKurtosis] = kurtosis * GuardedSqrt(c / 24.0);
      }
    }
  }

  if (Wanted(flags, {kStatMedian, kStatMode, kStatLowerQuartile, kStatUpperQuartile,
                     kStatInterquartileRange})) {
    OrderResults(values, n, count, flags, results, slot);
  }
}

void CountBins(const double* values, int32_t n, int32_t* counts, int32_t* below, int32_t* above,
               double lower, double upper, int32_t bins) {
  for (int32_t j = 0; j < bins; ++j) counts[j] = 0;
  *below = 0;
  *above = 0;
  const double width = bins > 0 ? (upper - lower) / bins : 0.0;
  auto edge = [&](int32_t j) { return lower + (j + 1) * width; };  // upper edge of bin j
  for (int32_t i = 0; i < n; ++i) {
    const double v = values[i];
    if (v == kMissingValue || std::isnan(v)) continue;
    if (v <= lower) {
      ++*below;
    } else if (v > upper) {
      ++*above;
    } else if (bins > 0 && width > 0.0) {
      // The first bin whose upper edge is at least v: a first guess from the
      // width, then moved to where the edges, computed as the rule states
      // them, put it; a value past the last computed edge by rounding stays
      // in the last bin.
      const double guess = std::ceil((v - lower) / width) - 1.0;
      int32_t j = guess < 0.0 ? 0 : (guess >= bins ? bins - 1 : static_cast<int32_t>(guess));
      while (j > 0 && edge(j - 1) >= v) --j;
      while (j < bins - 1 && edge(j) < v) ++j;
      ++counts[j];
    }
  }
}

}  // namespace zv

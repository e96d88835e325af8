// Descriptive statistics of a column, shared by Codebook, Rowwise and the
// distribution fitting, and the counting of values into histogram classes.
#pragma once

#include <cstdint>

namespace zv {

// A StatisticsRecord is 20 doubles, MissingValue where a statistic has no
// value. The flags of ComputeSummary use the same indexes.
inline constexpr int kStatisticsRecordSize = 20;
inline constexpr int kStatCount = 0;
inline constexpr int kStatMean = 1;
inline constexpr int kStatMedian = 2;
inline constexpr int kStatMode = 3;
inline constexpr int kStatGeometricMean = 4;
inline constexpr int kStatVariance = 5;
inline constexpr int kStatStandardDeviation = 6;
inline constexpr int kStatStandardError = 7;
inline constexpr int kStatMinimum = 8;
inline constexpr int kStatMaximum = 9;
inline constexpr int kStatRange = 10;
inline constexpr int kStatLowerQuartile = 11;
inline constexpr int kStatUpperQuartile = 12;
inline constexpr int kStatInterquartileRange = 13;
inline constexpr int kStatSkewness = 14;
inline constexpr int kStatStandardizedSkewness = 15;
inline constexpr int kStatKurtosis = 16;
inline constexpr int kStatStandardizedKurtosis = 17;
inline constexpr int kStatCoefficientOfVariation = 18;  // in percent
inline constexpr int kStatSum = 19;

// Every flag set: what Codebook and Rowwise ask for.
inline constexpr int32_t kAllStatistics[kStatisticsRecordSize] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                                                  1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

// Statistics of the `n` values (MissingValue rows are skipped) into
// `results` (20 doubles, all set to MissingValue first); result i is
// computed when flags[i] is non-zero, the count always. The median, mode and
// quartiles read gStates[slot]->order, built here by SortOrderNumeric without
// ties when orderReady is 0; when that fails they stay MissingValue. A
// geometric mean past the range of the guarded exponential raises
// SilentAbort.
void ComputeSummary(const double* values, int32_t n, const int32_t* flags, double* results,
                    int32_t slot);

// Counts the `n` values (MissingValue skipped) into `bins` classes of equal
// width between `lower` and `upper`, open below and closed above: at most
// `lower` counts in *below, above `upper` in *above. `counts` holds `bins`
// int32 and is zeroed first.
void CountBins(const double* values, int32_t n, int32_t* counts, int32_t* below, int32_t* above,
               double lower, double upper, int32_t bins);

}  // namespace zv

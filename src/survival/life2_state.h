// The fields of the product-limit procedure (and those that the life table
// procedure shares with it) in the Host's ProcedureState, and the bindings
// whose data handles hold its result columns. Offsets are part of the
// record's stored format.
#pragma once

#include <cstdint>

#include "frame/host_records.h"

namespace zv {

// Variables of the dialog.
inline constexpr int kTimeBinding = 0;
inline constexpr int kCensorBinding = 1;
inline constexpr int kGroupBinding = 2;

// Bindings that only own result blocks. n is rowCount, G the group count.
inline constexpr int kGroupIndexBinding = 5;         // int32 x n: group from 0, or kExcludedRow
inline constexpr int kGroupLabelsBinding = 6;        // 20 chars x n slots, G used
inline constexpr int kGroupCountsBinding = 7;        // int32 x 2G: rows, then failures
inline constexpr int kSortOrderBinding = 8;          // int32 x n: rows in survival order
inline constexpr int kSortKeysBinding = 9;           // double x n: scratch
inline constexpr int kSortWorkBinding = 10;          // int32 x n: scratch
inline constexpr int kAtRiskBinding = 11;            // int32 x n, by position
inline constexpr int kSurvivalBinding = 12;          // double x n, by position
inline constexpr int kSurvivalErrorBinding = 13;     // double x n, by position
inline constexpr int kCumulativeHazardBinding = 14;  // double x n, by position
inline constexpr int kMeanSurvivalBinding = 15;      // double x 2G: mean, error per group

inline constexpr int32_t kExcludedRow = -32768;
inline constexpr int32_t kGroupLabelWidth = 20;
inline constexpr int32_t kPercentileSlots = 10;

// Results of the estimation.
ZV_FAMILY_FIELD(kHasCensoring, int32_t, 0x1FA8);
ZV_FAMILY_FIELD(kGroupCount, int32_t, 0x1FAC);
ZV_FAMILY_FIELD(kSmallestTime, double, 0x20F8);

// Options, shared with the life tables; written by Setup at the first run.
ZV_FAMILY_FIELD(kShowConfidenceLimits, int32_t, 0x1FB0);  // pane 8 of both procedures
ZV_FAMILY_FIELD(kLifeTablePane9Flag, int32_t, 0x1FB4);
ZV_FAMILY_FIELD(kLifeTablePane10Flag, int32_t, 0x1FB8);
ZV_FAMILY_FIELD(kShowDensityLimits, int32_t, 0x1FBC);             // life tables, pane 11
ZV_FAMILY_FIELD(kShowHazardLimits, int32_t, 0x1FC0);              // life tables, pane 12
ZV_FAMILY_ARRAY(kPercentiles, double, kPercentileSlots, 0x2130);  // 0 = empty slot
ZV_FAMILY_FIELD(kConfidenceLevel, double, 0x2180);

// Results of the group comparison.
ZV_FAMILY_FIELD(kLogrankChiSquare, double, 0x22C0);
ZV_FAMILY_FIELD(kLogrankPValue, double, 0x22C8);
ZV_FAMILY_FIELD(kWilcoxonChiSquare, double, 0x22D0);
ZV_FAMILY_FIELD(kWilcoxonPValue, double, 0x22D8);

// Written by the panes for the interpretation.
ZV_FAMILY_FIELD(kFirstPercentile, double, 0x31F0);
ZV_FAMILY_FIELD(kFirstPercentileEstimate, double, 0x31F8);
ZV_FAMILY_FIELD(kSmallestPValue, double, 0x3200);

}  // namespace zv

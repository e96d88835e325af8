// The string-table entries of the survival procedures, by name.
#pragma once

#include <cstdint>

namespace zv {

// The product-limit procedure's code, which is also the number of its name.
inline constexpr int32_t kLife2Code = 5764;
inline constexpr int32_t kLife2Title = 5764;
// A status and its text: a time at or below 0, or no time at all.
inline constexpr int32_t kNonPositiveTimeText = 1069;
// The comparison pane's line when there are more groups than the tests take
// (format with the cap).
inline constexpr int32_t kTooManyGroupsText = 1070;

// Interpretation of the summary pane.
inline constexpr int32_t kSummaryTableSentence = 8997;  // format with the time's expression
inline constexpr int32_t kSummaryColumnsSentence = 8998;
inline constexpr int32_t kSummaryStepsSentence = 8999;
inline constexpr int32_t kMeanAreaSentence = 5600;
inline constexpr int32_t kMeanUnderestimateSentence = 5601;
inline constexpr int32_t kPercentilePointerSentence = 5602;
// Interpretation of the percentile pane.
inline constexpr int32_t kPercentileTableSentence = 8977;
inline constexpr int32_t kPercentileErrorSentence = 8978;
inline constexpr int32_t kPercentileTimePrefix = 8979;  // + percentile
inline constexpr int32_t kPercentileTimeMiddle = 8980;  // + estimate + "."
inline constexpr int32_t kPercentileUnreachedSentence = 8981;
// Interpretation of the comparison pane.
inline constexpr int32_t kComparisonTableSentence = 8982;
inline constexpr int32_t kComparisonWithdrawalSentence = 8983;
inline constexpr int32_t kGroupTestsSentence = 5603;  // format with the number of groups
inline constexpr int32_t kDifferAt1Sentence = 5604;
inline constexpr int32_t kDifferAt5Sentence = 5605;
inline constexpr int32_t kDifferAt10Sentence = 5606;
inline constexpr int32_t kNoDifferenceSentence = 5607;
// Interpretation of the plots.
inline constexpr int32_t kSurvivalPlotSentence = 8984;
inline constexpr int32_t kSurvivalStepsSentence = 8985;
inline constexpr int32_t kLimitsOfferedSentence = 8986;
inline constexpr int32_t kLimitsShownPrefix = 8987;  // + level
inline constexpr int32_t kLimitsShownSuffix = 8988;
inline constexpr int32_t kLogSurvivalPlotSentence = 8989;
inline constexpr int32_t kLogSurvivalLineSentence = 8990;
inline constexpr int32_t kHazardPlotSentence = 8991;
inline constexpr int32_t kHazardSlopeSentence = 8992;

}  // namespace zv

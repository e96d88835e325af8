// The string-table entries of the chart procedures, by name.
#pragma once

#include <cstdint>

namespace zv {

// The dot diagram's code, which is also the number of its name.
inline constexpr int32_t kDotDiagramCode = 2842;
inline constexpr int32_t kDotDiagramTitle = 9961;
inline constexpr int32_t kDotHeading = 9962;
inline constexpr int32_t kDotHeadingRule = 9963;
inline constexpr int32_t kDotVariableLabel = 9964;
inline constexpr int32_t kDotCountLine = 9965;  // format with the number of observations
inline constexpr int32_t kDotMeanLabel = 9966;
inline constexpr int32_t kDotDeviationLabel = 9967;
inline constexpr int32_t kDotGraphTitle = 9968;
inline constexpr int32_t kDotShowsSentence = 4928;  // format with the variable's expression
inline constexpr int32_t kDotStacksSentence = 4929;

}  // namespace zv

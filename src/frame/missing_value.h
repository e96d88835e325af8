// The missing value: the double -32768.0, compared exactly. It stands for a
// missing value in columns, results and option fields, and the number
// formatters print it as an empty field. Depends on nothing, so that the
// numeric code can use it without the Host's records.
#pragma once

namespace zv {

inline constexpr double kMissingValue = -32768.0;

}  // namespace zv

// Axis scales of the graph being built: neat tick values that cover the data,
// at most 40 intervals, an optional common factor shown beside the axis, and
// the tick labels and axis titles as text items. Axes are numbered 1 (x),
// 2 (y) and 3 (the third axis of a three-dimensional graph); everything works
// on gCurrentPane between BeginGraph and EndGraph.
#pragma once

#include <cstdint>

namespace zv {

inline constexpr int32_t kMaxIntervals = 40;
inline constexpr int32_t kAxisNumberWidth = 16;

// Neat limits for [low, high]: outLow and outHigh are the first and last
// tick, outFactor the common factor of the labels (1 for none). Returns the
// number of intervals. Equal limits are widened by a tenth, and two missing
// limits stand for 0 and 1. Where the neat limits would overflow, the result
// is one interval over the given limits, and AxisRangeFits says whether even
// those can be drawn.
int32_t NiceScale(double low, double high, double* outLow, double* outHigh, double* outFactor);

// Whether a graph can show [low, high]: both finite, and the neat limits
// around them and the span between those within the double range. A family
// refuses data outside it with a status rather than draw on an axis that
// does not hold the values.
bool AxisRangeFits(double low, double high);

// Scales `axis` to cover the data [low, high] unless the axis is already set
// in this graph (the first call wins) or the user fixed it. `type` is the
// variable's type letter: 'D', 'M', 'Q', 'T' and 'S' are dates and times,
// and 'M' and 'Q' axes start at the data's first period with ticks whole
// years apart.
void SetAxisAuto(int32_t axis, double low, double high, char type);

// The plot's own scale from low by step to high, logarithmic when `log` is
// set. 0 after ShowError 1023 for a logarithmic axis with low at or below 0.
int32_t SetAxisManual(int32_t axis, double low, double high, double step, int32_t useFactor,
                      int32_t log);

// Minor divisions, 1 to 7, between major ticks `step` apart.
int32_t PickMinorTicks(double step);

void SetAxisTicks(int32_t axis, int32_t majorTicks, int32_t minorTicks, int32_t tickOption);

// SetAxisTicks with every tick a major one and the minor divisions that suit
// the tick step: what plot writers use for a scaled axis.
void SetAxisTicksByScale(int32_t axis);

// The frame words (intervals and tick marks per axis) from the tick tables.
void ComputeFrame();

// Tick labels (labelMode 1), the factor label and the axis title (titleFlag
// 1) of axis `position` as text items. Call after PlaceTitles.
void DrawAxisLabels(int32_t position, int32_t titleFlag, int32_t labelMode);

// A tick label with six significant digits into buffer (width + 1 bytes); an
// empty text when it does not fit or the value is missing.
void FormatAxisNumber(char* buffer, double value, int32_t width);

}  // namespace zv

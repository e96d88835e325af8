#include "charts/dot_diagram.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "charts/chart_strings.h"
#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "protocol/families.h"
#include "services/axes.h"
#include "services/movable_block.h"
#include "services/number_format.h"
#include "services/report_pane.h"
#include "services/row_order.h"
#include "services/variables.h"
#include "stats/guarded_math.h"

namespace zv {
namespace {

void WriteDefaults(ProcedureState& state) {
  Set(state, kDotClasses, 0);
  Set(state, kDotUnused2014, -32768);
}

int32_t WritePane(PaneWindow* pane, int32_t slot, int32_t item) {
  if (item == 1) return DotDiagramSummaryPane(pane, slot, item, 1);
  if (item == 8) return DotDiagramGraphPane(pane, slot, item, 1);
  return 0;
}

const VariableDialogLayout kDialog{
    .templateId = 9969,
    .helpId = 42582,
    .caption = nullptr,
    .fields = {{.control = 116,
                .arrow = 119,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = false,
                .allowText = false,
                .isSelect = false,
                .binding = 0},
               {.control = 117,
                .arrow = 120,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = true,
                .allowText = false,
                .isSelect = true,
                .binding = kSelectBinding}},
    .transformControl = 121,
    .expressionDialog = true,
};

// Mean and standard deviation of the non-missing values, each taken times
// `scale` for the sums and divided by it after; `sum` is the plain sum
// when scale is 1, and is taken again otherwise.
void MeanAndDeviation(const double* values, int32_t n, double count, double sum, double scale,
                      double* mean, double* deviation) {
  if (scale != 1.0) {
    sum = 0.0;
    for (int32_t row = 0; row < n; ++row) {
      if (values[row] != kMissingValue) sum += values[row] * scale;
    }
  }
  const double m = sum / count;
  double squares = 0.0;
  for (int32_t row = 0; row < n; ++row) {
    const double v = values[row];
    if (v != kMissingValue) squares += (v * scale - m) * (v * scale - m);
  }
  *mean = m / scale;
  *deviation = GuardedSqrt(squares / (count - 1.0)) / scale;
}

}  // namespace

void DotDiagramPrepare(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const VariableBinding& data = state.bindings[0];
  if (data.count == 0) {
    state.status = 3;
    return;
  }
  if (data.minimum == data.maximum) {
    state.status = 1042;
    return;
  }
  const int32_t n = state.rowCount;
  {
    LockedBlock<double> values(data.data);
    if (SortOrderNumeric(values.get(), slot, n, 1) == 0) {
      state.status = 1004;
      return;
    }
  }
  LockedBlock<double> values(data.data);
  LockedBlock<int32_t> order(state.order);
  double count = 0.0;
  double runs = 0.0;
  double sum = 0.0;
  double largest = 0.0;
  double previous = kMissingValue;
  for (int32_t i = 0; i < n; ++i) {
    const double v = values[static_cast<size_t>(order[i])];
    if (v == kMissingValue) continue;
    if (count == 0.0 || v != previous) runs += 1.0;
    previous = v;
    count += 1.0;
    sum += v;
    largest = std::max(largest, std::fabs(v));
  }
  if (count < 2.0) {
    state.status = 1042;
    return;
  }
  double mean = 0.0;
  double deviation = 0.0;
  MeanAndDeviation(values.get(), n, count, sum, 1.0, &mean, &deviation);
  if (!std::isfinite(mean) || !std::isfinite(deviation)) {
    // Sums past the double range: again over the values scaled by a power
    // of two, which is exact, so that a mean and deviation that are within
    // the range still come out.
    MeanAndDeviation(values.get(), n, count, 0.0, std::ldexp(1.0, -std::ilogb(largest)), &mean,
                     &deviation);
  }
  Set(state, kDotCount, count);
  Set(state, kDotDistinct, runs);
  Set(state, kDotMean, std::isfinite(mean) ? mean : kMissingValue);
  Set(state, kDotDeviation, std::isfinite(deviation) ? deviation : kMissingValue);
  // Values so far apart that no axis spans them cannot be drawn.
  if (!AxisRangeFits(data.minimum, data.maximum)) state.status = 4;
}

int32_t DotDiagramSummaryPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t) {
  ProcedureState& state = StateOf(slot);
  char number[32];
  std::string text = LoadText(kDotHeading) + kLineEnd;
  text += LoadText(kDotHeadingRule) + kLineEnd;
  text += LoadText(kDotVariableLabel);
  text += ExpressionOf(state.bindings[0]);
  text += kLineEnd;
  const std::string_view select = ExpressionOf(state.bindings[kSelectBinding]);
  if (!select.empty()) {
    text += LoadText(kSelectLabel);
    text += select;
    text += kLineEnd;
  }
  text += kLineEnd;
  text += FormatText(kDotCountLine, SIZE_MAX, static_cast<int>(Get(state, kDotCount))) + kLineEnd;
  FormatNumber(number, Get(state, kDotMean), 16);
  text += LoadText(kDotMeanLabel) + number + kLineEnd;
  FormatNumber(number, Get(state, kDotDeviation), 16);
  text += LoadText(kDotDeviationLabel) + number + kLineEnd;
  text += kLineEnd;
  if (state.status == 0) {
    AppendAdvice(text, slot, item);
  } else {
    text += LoadText(StatusString(kChartStatusTexts, state.status)) + kLineEnd;
  }
  return SetPaneText(pane, slot, item, text);
}

void InterpretDotDiagram(const ProcedureState& state, int32_t item, std::string& out) {
  if (item != 1 && item != 8) return;
  const std::string expression(ExpressionOf(state.bindings[0]));
  out += FormatText(kDotShowsSentence, kInterpretBufferSize, expression.c_str());
  out += "  ";
  out += LoadText(kDotStacksSentence);
  out += "\r\n\r\n";
}

const FamilyInfo kDotDiagramFamily{
    .name = "DotDiagram",
    .procedureCode = kDotDiagramCode,
    .helpId = 32977,
    .titleString = kDotDiagramTitle,
    .titleEntry = 0,
    .firstListCount = 1,
    .secondListCount = 0,
    .lineListEntry = -1,
    .textOptionsMask = 0,
    .graphOptionsMask = 1,
    .setsExtraStale = false,
    .loadsNoColumns = false,
    .redoDoesNothing = false,
    .variables = {{.binding = 0, .required = true, .allowText = false}},
    .dialog = &kDialog,
    .writeDefaults = WriteDefaults,
    .compute = DotDiagramPrepare,
    .writePane = WritePane,
    .optionsDialog = DotDiagramOptionsDialog,
    .interpret = InterpretDotDiagram,
};

}  // namespace zv

#include "charts/dot_diagram.h"

#include <cstdio>
#include <vector>

#include "charts/chart_strings.h"
#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "protocol/families.h"
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
  double previous = kMissingValue;
  for (int32_t i = 0; i < n; ++i) {
    const double v = values[static_cast<size_t>(order[i])];
    if (v == kMissingValue) continue;
    if (count == 0.0 || v != previous) runs += 1.0;
    previous = v;
    count += 1.0;
    sum += v;
  }
  if (count < 2.0) {
    state.status = 1042;
    return;
  }
  const double mean = sum / count;
  double squares = 0.0;
  for (int32_t row = 0; row < n; ++row) {
    const double v = values[static_cast<size_t>(row)];
    if (v != kMissingValue) squares += (v - mean) * (v - mean);
  }
  Set(state, kDotCount, count);
  Set(state, kDotDistinct, runs);
  Set(state, kDotMean, mean);
  Set(state, kDotDeviation, GuardedSqrt(squares / (count - 1.0)));
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

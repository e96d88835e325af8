#include "charts/dot_diagram.h"

#include <cstdio>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "protocol/families.h"
#include "services/movable_block.h"
#include "services/number_format.h"
#include "services/report_pane.h"
#include "services/row_order.h"
#include "services/variables.h"
#include "stats/guarded_math.h"

namespace zv {
namespace {

// Expands a string-table format that takes one argument.
template <class T>
std::string FormatString(int32_t stringNumber, T value) {
  const std::string format = LoadText(stringNumber);
  const int length = std::snprintf(nullptr, 0, format.c_str(), value);
  if (length <= 0) return std::string();
  std::string out(static_cast<size_t>(length) + 1, '\0');
  std::snprintf(out.data(), out.size(), format.c_str(), value);
  out.pop_back();
  return out;
}

int32_t StatusString(int32_t status) {
  switch (status) {
    case 1:
      return 1005;
    case 2:
    case 1004:
      return 1004;
    case 3:
      return 3023;
    case 1042:
      return 1042;
    case 4:
      return 3903;
    default:
      return 1025;
  }
}

void WriteDefaults(ProcedureState& state) {
  Set(state, kDotClasses, 0);
  Set(state, kDotUnused2014, -32768);
}

int32_t WritePane(PaneWindow* pane, int32_t slot, int32_t item) {
  if (item == 1) return DotDiagramSummaryPane(pane, slot, item, 1);
  if (item == 8) return DotDiagramGraphPane(pane, slot, item, 1);
  return 0;
}

int32_t Options(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record) {
  return StandardOptions(kDotDiagramFamily, pane, slot, item, record, DotDiagramOptionsDialog);
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
  std::string text = LoadText(9962) + kLineEnd;
  text += LoadText(9963) + kLineEnd;
  text += LoadText(9964);
  text += ExpressionOf(state.bindings[0]);
  text += kLineEnd;
  const std::string_view select = ExpressionOf(state.bindings[kSelectBinding]);
  if (!select.empty()) {
    text += LoadText(3002);
    text += select;
    text += kLineEnd;
  }
  text += kLineEnd;
  text += FormatString(9965, static_cast<int>(Get(state, kDotCount))) + kLineEnd;
  FormatNumber(number, Get(state, kDotMean), 16);
  text += LoadText(9966) + number + kLineEnd;
  FormatNumber(number, Get(state, kDotDeviation), 16);
  text += LoadText(9967) + number + kLineEnd;
  text += kLineEnd;
  if (state.status == 0) {
    AppendAdvice(text, slot, item);
  } else {
    text += LoadText(StatusString(state.status)) + kLineEnd;
  }
  return SetPaneText(pane, slot, item, text);
}

void InterpretDotDiagram(const ProcedureState& state, int32_t item, std::string& out) {
  if (item != 1 && item != 8) return;
  const std::string expression(ExpressionOf(state.bindings[0]));
  out += FormatString(4928, expression.c_str());
  out += "  ";
  out += LoadText(4929);
  out += "\r\n\r\n";
}

const FamilyInfo kDotDiagramFamily{
    .name = "DotDiagram",
    .procedureCode = kDotDiagramCode,
    .helpId = 32977,
    .titleString = 9961,
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
    .options = Options,
    .interpret = InterpretDotDiagram,
};

}  // namespace zv

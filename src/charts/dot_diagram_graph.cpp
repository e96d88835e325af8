// The dot diagram's graph pane and its options dialog.
#include <algorithm>
#include <vector>

#include "charts/chart_strings.h"
#include "charts/dot_diagram.h"
#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "protocol/families.h"
#include "services/axes.h"
#include "services/dialog_exchange.h"
#include "services/graph_pane.h"
#include "services/movable_block.h"
#include "services/option_dialog.h"
#include "services/report_pane.h"
#include "services/variables.h"

namespace zv {
namespace {

constexpr int32_t kGraphItem = 8;
constexpr int32_t kGraphMenu = 0x1917;

// Axis type letter of a variable: only the date and time letters mean
// anything to the axis.
char AxisTypeOf(const VariableBinding& binding) {
  switch (binding.type) {
    case 'D':
    case 'M':
    case 'Q':
    case 'T':
    case 'S':
      return binding.type;
    default:
      return 0;
  }
}

// One dot per non-missing value, stacked by the rule of the pane. With k
// classes the class edges come from the x axis already scaled; a value beyond
// the axis ends is in no class and gets no dot. Returns the tallest stack's
// height (a stack of n dots has height n - 1); `points` may be null for the
// pass that only measures.
int32_t StackDots(const double* values, const int32_t* order, int32_t n, int32_t classes,
                  double start, double span, std::vector<double>* points) {
  int32_t tallest = 0;
  if (classes == 0) {
    double previous = kMissingValue;
    int32_t height = 0;
    for (int32_t i = 0; i < n; ++i) {
      const int32_t row = order[i];
      const double v = values[row];
      if (v == kMissingValue) continue;
      height = v == previous ? height + 1 : 0;
      previous = v;
      tallest = std::max(tallest, height);
      if (points) points->insert(points->end(), {v, height + 0.5, static_cast<double>(row)});
    }
    return tallest;
  }
  const double width = span / classes;
  int32_t c = 0;
  int32_t height = -1;
  for (int32_t i = 0; i < n; ++i) {
    const int32_t row = order[i];
    const double v = values[row];
    if (v == kMissingValue) continue;
    // Values come in ascending order, so the class only moves up.
    while (c < classes && v > (c + 1) * width + start) {
      ++c;
      height = -1;
    }
    if (c >= classes) break;
    const double lower = c * width + start;
    const double upper = (c + 1) * width + start;
    const bool inside = (lower < v && v <= upper) || (c == 0 && v == lower);
    if (!inside) continue;
    ++height;
    tallest = std::max(tallest, height);
    if (points) {
      // Halves first: the sum of two edges near the double range overflows.
      points->insert(points->end(),
                     {lower * 0.5 + upper * 0.5, height + 0.5, static_cast<double>(row)});
    }
  }
  return tallest;
}

class DotOptionsDialog : public OptionDialog {
 public:
  DotOptionsDialog() : OptionDialog(818, 42583) {}
  int32_t classesOn = 0;
  int32_t count = 50;

 protected:
  void Exchange(DataExchange& dx) override {
    ExchangeRadio(dx, 176, 177, &classesOn);
    if (!dx.saving || classesOn == 1) {
      ExchangeInt(dx, 141, &count);
      CheckIntRange(dx, 141, count, 2, 1000);
    }
  }
  // The count and its label serve only the second button.
  void UpdateControls() override {
    const bool on = IsChecked(177) != 0;
    EnableItem(141, on);
    EnableItem(306, on);
  }
};

}  // namespace

int32_t DotDiagramGraphPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t) {
  const GraphStart graph = StartFamilyGraph(pane, slot, item);
  if (graph.record == nullptr) return graph.result;
  const PaneRecord& record = *graph.record;
  ProcedureState& state = StateOf(slot);
  const VariableBinding& data = state.bindings[0];
  const int32_t classes = Get(state, kDotClasses);
  SetAxisAuto(1, data.minimum, data.maximum, AxisTypeOf(data));

  // The x axis is settled first, so that the class edges of both passes
  // (the tallest stack for the y axis, then the dots) are the same.
  const int32_t n = state.rowCount;
  std::vector<double> points;
  int32_t tallest = 0;
  {
    LockedBlock<double> values(data.data);
    LockedBlock<int32_t> order(state.order);
    const double start = record.scale[0].low;
    const double span = record.scale[0].span;
    tallest = StackDots(values.get(), order.get(), n, classes, start, span, nullptr);
    points.reserve(static_cast<size_t>(Get(state, kDotCount)) * 3);
    StackDots(values.get(), order.get(), n, classes, start, span, &points);
  }
  SetAxisManual(2, 0, tallest + 1, tallest + 1, 0, 0);

  ComputeFrame();
  SetTitleLine(ExpressionOf(data), 1);
  gXTitle = "{1}";
  gYTitle = "Frequency";
  gMainTitle = LoadText(kDotGraphTitle);
  SetAxisTicksByScale(1);
  SetAxisTicksByScale(2);
  PlaceTitles();
  DrawAxisLabels(1, 1, 1);
  DrawAxisLabels(2, 1, 1);

  GraphLists& lists = CurrentGraphLists();
  lists.pointWidth = 3;
  const int32_t dots = static_cast<int32_t>(points.size() / 3);
  if (ResizeGraphList(lists.elementTable, 3) &&
      ResizeGraphList(lists.elementPoints, points.size())) {
    lists.elementTable = {dots, 0, 1};
    lists.elementPoints = std::move(points);
  } else {
    lists.elementTable.clear();
    lists.elementPoints.clear();
  }
  if (gViews[slot] != nullptr) gViews[slot]->graphMenu[item] = kGraphMenu;
  EndGraph(pane, slot);
  WriteGraphAdvice(slot, item);
  return 1;
}

int32_t DotDiagramOptionsDialog(int32_t slot, int32_t item) {
  if (item != kGraphItem) return -1;
  ProcedureState& state = StateOf(slot);
  DotOptionsDialog dialog;
  const int32_t classes = Get(state, kDotClasses);
  dialog.classesOn = classes != 0 ? 1 : 0;
  dialog.count = classes != 0 ? classes : 50;
  if (dialog.DoModal() != kIdOk) return 0;
  state.keepScales = 0;
  Set(state, kDotClasses, dialog.classesOn == 1 ? dialog.count : 0);
  return 1;
}

}  // namespace zv

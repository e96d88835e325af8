// The three step plots of the product-limit procedure: the survival
// function (with confidence limits for a single group), the log survival
// function and the cumulative hazard. Only failures make steps.
#include <algorithm>
#include <cassert>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "protocol/families.h"
#include "services/axes.h"
#include "services/graph_pane.h"
#include "services/movable_block.h"
#include "services/report_pane.h"
#include "services/variables.h"
#include "stats/special_functions.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "survival/product_limit.h"

namespace zv {
namespace {

constexpr int32_t kDrawnGroups = 20;  // further groups are left out of a plot
constexpr int32_t kGraphMenu = 0xBB00;
constexpr int32_t kLimitsPen = 6;
constexpr double kLinePoint = -1.0;

struct PlotKind {
  const char* title;
  const char* yTitle;
  double startLevel;
};
constexpr PlotKind kKinds[] = {
    {"Estimated Survival Function", "survival probability", 1.0},
    {"Estimated Log Survival Function", "log survival probability", 0.0},
    {"Estimated Cumulative Hazard Function", "cumulative hazard", 0.0},
};

// The y value of a failure row in a plot of `kind`.
double StepLevel(int32_t kind, double survival, double hazard) {
  if (kind == 0) return survival;
  if (kind == 1) return hazard == kMissingValue ? kMissingValue : -hazard;
  return hazard;
}

bool LastRowWithdrawn(const SurvivalGroup& g) {
  return g.count > 0 && IsWithdrawn(g, g.count - 1);
}

}  // namespace

int32_t Life2PlotPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t kind) {
  const GraphStart graph = StartFamilyGraph(pane, slot, item);
  if (graph.record == nullptr) return graph.result;
  PaneRecord& record = *graph.record;
  ProcedureState& state = StateOf(slot);
  const PlotKind& plot = kKinds[kind];
  const VariableBinding& time = state.bindings[kTimeBinding];
  const int32_t drawn = std::min(Get(state, kGroupCount), kDrawnGroups);
  const bool censored = Get(state, kHasCensoring) != 0;

  LockedBlock<const int32_t> order(state.bindings[kSortOrderBinding].data);
  LockedBlock<const double> times(time.data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> counts(state.bindings[kGroupCountsBinding].data);
  LockedBlock<const double> survival(state.bindings[kSurvivalBinding].data);
  LockedBlock<const double> error(state.bindings[kSurvivalErrorBinding].data);
  LockedBlock<const double> hazard(state.bindings[kCumulativeHazardBinding].data);
  const int32_t groups = Get(state, kGroupCount);
  auto groupAt = [&](int32_t start, int32_t g) {
    return SurvivalGroup{order.get() + start, counts[g], times.get(), censor.get()};
  };

  // Exact counts of list A.
  const bool limits = kind == 0 && Get(state, kShowConfidenceLimits) != 0 && drawn == 1;
  int64_t points = 0;
  int64_t polylines = drawn;
  for (int32_t g = 0; g < drawn; ++g) {
    const int64_t failures = counts[groups + g];
    points += 2 + 2 * failures;
    if (limits) {
      polylines += 2 * failures;
      points += 4 * failures;
      if (LastRowWithdrawn(groupAt(0, g))) {
        polylines += 2;
        points += 4;
      }
    }
  }
  if (drawn > 1) {
    polylines += drawn;
    points += 2 * drawn;
    record.legendOn = 1;
  }
  GraphLists& lists = CurrentGraphLists();
  lists.pointWidth = 3;
  const bool haveLists = ResizeGraphList(lists.elementTable, static_cast<size_t>(polylines) * 3) &&
                         ResizeGraphList(lists.elementPoints, static_cast<size_t>(points) * 3);
  if (!haveLists) {
    lists.elementTable.clear();
    lists.elementPoints.clear();
  }
  ElementWriter list(lists, haveLists);

  SetAxisAuto(1, 0.0, time.maximum, time.type);
  const double axisEnd = record.scale[0].low + record.scale[0].span;

  if (limits) {
    const double level = Get(state, kConfidenceLevel);
    const double z = NormalQuantile((level * -0.01 + 1.0) * -0.5 + 1.0);
    const GatheredGroup gathered(groupAt(0, 0));
    const SurvivalGroup& g = gathered.view();
    double prevX = 0.0;
    double prevS = 1.0;
    double prevError = 0.0;
    for (int32_t k = 0; k < g.count; ++k) {
      if (IsWithdrawn(g, k) && k + 1 != g.count) continue;
      const double h = prevError * z;
      const double t = g.time[g.rows[k]];
      const double low = std::max(prevS - h, 0.0);
      const double high = std::min(prevS + h, 1.0);
      list.Begin(2, kLimitsPen);
      list.Point(prevX, low, kLinePoint);
      list.Point(t, low, kLinePoint);
      list.Begin(2, kLimitsPen);
      list.Point(prevX, high, kLinePoint);
      list.Point(t, high, kLinePoint);
      prevS = survival[k];
      prevX = t;
      prevError = error[k];
    }
  }

  double leastY = 0.0;
  double greatestY = 0.0;
  int32_t first = 0;
  for (int32_t g = 0; g < drawn; ++g) {
    const GatheredGroup gathered(groupAt(first, g));
    const SurvivalGroup& group = gathered.view();
    list.Begin(2 + 2 * counts[groups + g], g + 1);
    double level = plot.startLevel;
    list.Point(0.0, level, kLinePoint);
    for (int32_t k = 0; k < group.count; ++k) {
      if (IsWithdrawn(group, k)) continue;
      const double t = group.time[group.rows[k]];
      list.Point(t, level, kLinePoint);
      level = StepLevel(kind, survival[first + k], hazard[first + k]);
      list.Point(t, level, kLinePoint);
      if (level != kMissingValue) {
        leastY = std::min(leastY, level);
        greatestY = std::max(greatestY, level);
      }
    }
    const double endX = group.count == 0 || !LastRowWithdrawn(group)
                            ? axisEnd
                            : group.time[group.rows[group.count - 1]];
    list.Point(endX, level, kLinePoint);
    first += group.count;
  }

  if (kind == 0) {
    SetAxisAuto(2, 0.0, 1.0, 'N');
  } else if (kind == 1) {
    SetAxisAuto(2, leastY, 0.0, 'N');
  } else {
    SetAxisAuto(2, 0.0, greatestY, 'N');
  }
  ComputeFrame();
  SetTitleLine(ExpressionOf(time), 1);
  gXTitle = "{1}";
  gYTitle = plot.yTitle;
  gMainTitle = plot.title;
  SetAxisTicksByScale(1);
  SetAxisTicksByScale(2);
  PlaceTitles();
  DrawAxisLabels(1, 1, 1);
  DrawAxisLabels(2, 1, 1);

  if (drawn > 1) {
    LockedBlock<const char> labels(state.bindings[kGroupLabelsBinding].data);
    std::vector<std::string> legend;
    for (int32_t i = 0; i < drawn; ++i) {
      legend.push_back(TrimBlanks(std::string_view(
          labels.get() + static_cast<size_t>(i) * kGroupLabelWidth, kGroupLabelWidth)));
    }
    DrawLegend(record, ExpressionOf(state.bindings[kGroupBinding]), legend, list);
  }

  assert(!list.overflowed() && "list A was counted short");

  // Nothing of the state stays locked while the chart library and the advice
  // library have the state.
  for (auto* block : {&order, &counts}) block->Release();
  for (auto* block : {&times, &censor, &survival, &error, &hazard}) block->Release();
  if (gViews[slot] != nullptr) gViews[slot]->graphMenu[item] = kGraphMenu;
  EndGraph(pane, slot);
  WriteGraphAdvice(slot, item);
  return 1;
}

}  // namespace zv

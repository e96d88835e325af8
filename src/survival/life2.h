// The product-limit procedure over the state of a Slot: the computation of
// Begin and RedoItem1, its pane writers, the interpretation and the option
// dialogs. The estimates themselves are the plain-array functions of
// product_limit.h and group_tests.h.
#pragma once

#include <cstdint>
#include <string>

#include "frame/host_records.h"

namespace zv {

// Writes the option defaults of the first Setup: no confidence limits,
// percentiles 75, 50 and 25, confidence level 95.
void Life2WriteDefaults(ProcedureState& state);

// The whole computation: groups, row order, estimates and, with more than one
// group, the comparison tests. 1 when the results exist. 0 when they do not:
// `status` 2 out of memory, 1069 a time at or below 0 (or no time at all);
// `status` stays 0 with no group after a group sort that failed and showed
// its message. Begin ignores the result and the panes read `status`.
int32_t Life2Prepare(int32_t slot, int32_t unused);

// Forms the groups from the group column (bindings[2]), or one group without
// it: groupIndex, groupLabels and groupCount. A row with a missing group
// value loses its time. 0 when the group sort failed (it has shown its
// message); groupCount is then 0.
int32_t FormSurvivalGroups(int32_t slot);

// Fills atRisk, survival, survivalError, cumulativeHazard and meanSurvival
// for every group from sortOrder and groupCounts. 1.
int32_t Life2Estimate(int32_t slot);

// The Logrank and Wilcoxon chi-squares and P-values of the groups. 1, or 0
// with status 2 when work memory is short (one message). A covariance matrix
// that cannot be inverted leaves its test's two fields missing (a message has
// been shown); so do more than kMaxComparedGroups groups, without a message.
int32_t Life2CompareGroups(int32_t slot);

// Pane writers (PaneWindow, Slot, Item, 1 ignored); each hands its text to
// the pane and returns SetPaneText's result.
int32_t Life2SummaryPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t unused);
int32_t Life2PercentilePane(PaneWindow* pane, int32_t slot, int32_t item, int32_t unused);
int32_t Life2ComparisonPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t unused);
// The step plots: kind 0 survival, 1 log survival, 2 cumulative hazard.
int32_t Life2PlotPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t kind);

// The texts of the three report panes, as SetPaneText receives them (with the
// advice text when it is enabled). The percentile and comparison texts need
// results (`status` 0): their panes show WriteFailedPane's text otherwise.
std::string Life2SummaryText(int32_t slot);
std::string Life2PercentileText(int32_t slot);
std::string Life2ComparisonText(int32_t slot);

// The interpretation of pane `item`, appended to `out`.
void InterpretLife2(const ProcedureState& state, int32_t item, std::string& out);

}  // namespace zv

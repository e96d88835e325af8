// DotDiagram: one numeric column as stacks of dots over the value axis, with
// a short report of count, mean and standard deviation.
#pragma once

#include <cstdint>
#include <string>

#include "charts/chart_strings.h"
#include "frame/host_records.h"

namespace zv {

ZV_FAMILY_FIELD(kDotClasses, int32_t, 0x1F9C);  // 0: a stack per distinct value; else 2..1000
ZV_FAMILY_FIELD(kDotUnused2014, int32_t, 0x2014);
ZV_FAMILY_FIELD(kDotCount, double, 0x22C0);
ZV_FAMILY_FIELD(kDotDistinct, double, 0x22C8);
ZV_FAMILY_FIELD(kDotMean, double, 0x22D0);
ZV_FAMILY_FIELD(kDotDeviation, double, 0x22D8);

void DotDiagramPrepare(int32_t slot);
int32_t DotDiagramSummaryPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t one);
int32_t DotDiagramGraphPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t one);
// The options dialog of pane `item`: 1 stored, 0 cancelled, -1 the pane has none.
int32_t DotDiagramOptionsDialog(int32_t slot, int32_t item);
void InterpretDotDiagram(const ProcedureState& state, int32_t item, std::string& out);

}  // namespace zv

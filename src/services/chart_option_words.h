// The pane record's chart options as the chart library's option blocks:
// kIntegerOptionWords words and kRealOptionCount reals (ChartGetDefaults,
// ChartPutOptions), copied field by field to and from the PaneRecord.
#pragma once

#include <cstdint>

#include "frame/host_records.h"

namespace zv {

// Writes the record's option fields into the two blocks.
void OptionsFromRecord(const PaneRecord& pane, int32_t* words, double* reals);
// Reads the two blocks into the record's option fields.
void OptionsToRecord(const int32_t* words, const double* reals, PaneRecord& pane);

}  // namespace zv

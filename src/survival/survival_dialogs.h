// The option dialogs of the survival procedures: the ten percentiles of the
// percentile table, and the confidence limits of a plot with their level.
#pragma once

#include <cstdint>

#include "frame/host_records.h"

namespace zv {

// Percentiles dialog (template 113): slots 141 to 150, each 0 to 99.99; 0
// clears a slot. 1 after OK with the fields stored, 0 after Cancel.
int32_t RunPercentilesDialog(ProcedureState& state);

// Limits dialog (template 852): check box 107 for `flag`, field 141 for the
// confidence level, 0.0001 to 99.9999, shared by all panes of the procedure.
int32_t RunLimitsDialog(ProcedureState& state, FamilyField<int32_t> flag);

}  // namespace zv

// The interpretation sentences of the survival procedures: resource strings
// chained with fixed glue and numbers of the state set between them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/host_records.h"

namespace zv {

// The sentences of the percentile pane, shared by the product-limit and life
// table procedures: with the first percentile of the last build and its
// estimate when there is one.
std::vector<std::string> PercentileSentences(const ProcedureState& state);

// The sentence on confidence limits of a plot whose flag is `flag`.
std::string LimitsSentence(const ProcedureState& state, FamilyField<int32_t> flag);

}  // namespace zv

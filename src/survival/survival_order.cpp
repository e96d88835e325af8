#include "survival/survival_order.h"

#include <algorithm>
#include <limits>

#include "protocol/families.h"
#include "services/movable_block.h"
#include "services/work_blocks.h"
#include "survival/life2_state.h"

namespace zv {

// One sort by the full key. It gives the order of the two stable sorts that
// define it (by time with failures first, then by group with the excluded
// rows last): ties of both are broken by the row, which the key includes.
void OrderSurvivalRowsArrays(int32_t n, const double* time, const double* censor,
                             const int32_t* groupIndex, SurvivalSortKey* scratch,
                             int32_t* sortOrder) {
  constexpr uint32_t kWithdrawn = 0x80000000u;
  for (int32_t row = 0; row < n; ++row) {
    const bool withdrawn = censor != nullptr && censor[row] > 0.0;
    const double t =
        time[row] == kMissingValue ? std::numeric_limits<double>::infinity() : time[row];
    const uint32_t g =
        groupIndex[row] == kExcludedRow ? 0xFFFFFFFFu : static_cast<uint32_t>(groupIndex[row]);
    scratch[row] = {t, g, static_cast<uint32_t>(row) | (withdrawn ? kWithdrawn : 0u)};
  }
  std::sort(scratch, scratch + n, [](const SurvivalSortKey& a, const SurvivalSortKey& b) {
    if (a.group != b.group) return a.group < b.group;
    if (a.time != b.time) return a.time < b.time;
    return a.kindAndRow < b.kindAndRow;
  });
  for (int32_t i = 0; i < n; ++i) {
    sortOrder[i] = static_cast<int32_t>(scratch[i].kindAndRow & ~kWithdrawn);
  }
}

int32_t OrderSurvivalRows(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const bool censored = Get(state, kHasCensoring) != 0;
  WorkArray<SurvivalSortKey> keys(static_cast<uint64_t>(state.rowCount));
  LockedBlock<const double> time(state.bindings[kTimeBinding].data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> groups(state.bindings[kGroupIndexBinding].data);
  LockedBlock<int32_t> order(state.bindings[kSortOrderBinding].data);
  if (!keys || !time || !groups || !order || (censored && !censor)) {
    state.status = 2;
    return 0;
  }
  OrderSurvivalRowsArrays(state.rowCount, time.get(), censor.get(), groups.get(), keys.get(),
                          order.get());
  return 1;
}

}  // namespace zv

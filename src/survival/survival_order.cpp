#include "survival/survival_order.h"

#include <algorithm>
#include <limits>

#include "protocol/families.h"
#include "services/movable_block.h"
#include "services/radix_sort.h"
#include "services/work_blocks.h"
#include "survival/life2_state.h"

namespace zv {

void OrderSurvivalRowsArrays(int32_t n, const double* time, const double* censor,
                             const int32_t* groupIndex, SurvivalSortKey* scratch,
                             int32_t* sortOrder, SurvivalSortKey* spare) {
  constexpr uint32_t kWithdrawn = 0x80000000u;
  constexpr uint32_t kOutside = 0xFFFFFFFFu;
  uint64_t groupLimit = 0;  // one above the greatest group number
  for (int32_t row = 0; row < n; ++row) {
    const bool withdrawn = censor != nullptr && censor[row] > 0.0;
    const double t =
        time[row] == kMissingValue ? std::numeric_limits<double>::infinity() : time[row];
    const uint32_t g =
        groupIndex[row] == kExcludedRow ? kOutside : static_cast<uint32_t>(groupIndex[row]);
    if (g != kOutside) groupLimit = std::max<uint64_t>(groupLimit, g + uint64_t{1});
    scratch[row] = {OrderedKey(t), g, static_cast<uint32_t>(row) | (withdrawn ? kWithdrawn : 0u)};
  }
  if (spare != nullptr) {
    // Stable passes over the keys in row order, least significant first:
    // kind, time, group. The result is ordered by group, time, kind and row,
    // the comparison sort's order.
    const size_t count = static_cast<size_t>(n);
    RadixSortByKey(scratch, spare, count,
                   [](const SurvivalSortKey& k) { return uint64_t{k.kindAndRow >> 31}; });
    RadixSortByKey(scratch, spare, count, [](const SurvivalSortKey& k) { return k.time; });
    // The outside rows as the group after the last, so that a few groups
    // take one pass.
    RadixSortByKey(scratch, spare, count, [groupLimit](const SurvivalSortKey& k) {
      return k.group == kOutside ? groupLimit : uint64_t{k.group};
    });
  } else {
    std::sort(scratch, scratch + n, [](const SurvivalSortKey& a, const SurvivalSortKey& b) {
      if (a.group != b.group) return a.group < b.group;
      if (a.time != b.time) return a.time < b.time;
      return a.kindAndRow < b.kindAndRow;
    });
  }
  for (int32_t i = 0; i < n; ++i) {
    sortOrder[i] = static_cast<int32_t>(scratch[i].kindAndRow & ~kWithdrawn);
  }
}

int32_t OrderSurvivalRows(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const bool censored = Get(state, kHasCensoring) != 0;
  WorkArray<SurvivalSortKey> keys(2 * static_cast<uint64_t>(state.rowCount));
  LockedBlock<const double> time(state.bindings[kTimeBinding].data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> groups(state.bindings[kGroupIndexBinding].data);
  LockedBlock<int32_t> order(state.bindings[kSortOrderBinding].data);
  if (!keys || !time || !groups || !order || (censored && !censor)) {
    state.status = 2;
    return 0;
  }
  OrderSurvivalRowsArrays(state.rowCount, time.get(), censor.get(), groups.get(), keys.get(),
                          order.get(), keys.get() + state.rowCount);
  return 1;
}

}  // namespace zv

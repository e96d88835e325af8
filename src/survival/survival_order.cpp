#include "survival/survival_order.h"

#include <algorithm>
#include <limits>

#include "frame/families.h"
#include "services/movable_block.h"
#include "survival/life2_state.h"

namespace zv {

// The order is that of two stable sorts: by time (a missing time last) with
// failures standing before withdrawals, then by group with the excluded rows
// last. The first is one sort by the full key (time, kind, row), which needs
// no stability; the second a stable sort by group.
void OrderSurvivalRowsArrays(int32_t n, const double* time, const double* censor,
                             const int32_t* groupIndex, int32_t* sortWork, double* sortKeys,
                             int32_t* sortOrder) {
  constexpr double kLast = std::numeric_limits<double>::infinity();
  auto timeKey = [time](int32_t row) { return time[row] == kMissingValue ? kLast : time[row]; };
  auto withdrawn = [censor](int32_t row) { return censor != nullptr && censor[row] > 0.0; };
  for (int32_t i = 0; i < n; ++i) sortWork[i] = i;
  std::sort(sortWork, sortWork + n, [&](int32_t a, int32_t b) {
    const double ta = timeKey(a);
    const double tb = timeKey(b);
    if (ta != tb) return ta < tb;
    const bool wa = withdrawn(a);
    const bool wb = withdrawn(b);
    if (wa != wb) return wb;
    return a < b;
  });
  for (int32_t i = 0; i < n; ++i) {
    sortKeys[i] = groupIndex[sortWork[i]];
    sortOrder[i] = sortWork[i];
  }
  auto groupKey = [groupIndex](int32_t row) {
    const int32_t g = groupIndex[row];
    return g == kExcludedRow ? std::numeric_limits<int32_t>::max() : g;
  };
  std::stable_sort(sortOrder, sortOrder + n,
                   [&](int32_t a, int32_t b) { return groupKey(a) < groupKey(b); });
}

int32_t OrderSurvivalRows(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const bool censored = Get(state, kHasCensoring) != 0;
  LockedBlock<const double> time(state.bindings[kTimeBinding].data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> groups(state.bindings[kGroupIndexBinding].data);
  LockedBlock<int32_t> work(state.bindings[kSortWorkBinding].data);
  LockedBlock<double> keys(state.bindings[kSortKeysBinding].data);
  LockedBlock<int32_t> order(state.bindings[kSortOrderBinding].data);
  if (!time || !groups || !work || !keys || !order || (censored && !censor)) {
    state.status = 2;
    return 0;
  }
  OrderSurvivalRowsArrays(state.rowCount, time.get(), censor.get(), groups.get(), work.get(),
                          keys.get(), order.get());
  return 1;
}

}  // namespace zv

// The row order of the survival procedures: by group, then time, then
// failures before withdrawals, then row. Shared by the product-limit and the
// Weibull procedures.
#pragma once

#include <cstdint>

namespace zv {

// One row as the sort sees it, so that the sort walks one flat array.
struct SurvivalSortKey {
  uint64_t time;        // the time as OrderedKey gives it
  uint32_t group;       // 0xFFFFFFFF for a row outside every group
  uint32_t kindAndRow;  // the row, with the top bit set for a withdrawal
};

// Fills `sortOrder` with the n row numbers in survival order. Rows whose
// group is kExcludedRow stand behind all groups, ordered the same way among
// themselves (a missing time counts as greater than every time). A row is
// withdrawn when `censor` is given and its value is above 0. `scratch` holds
// n keys; with `spare`, n more, the order comes from a stable radix sort in
// linear time, without it from a comparison sort (the same order).
void OrderSurvivalRowsArrays(int32_t n, const double* time, const double* censor,
                             const int32_t* groupIndex, SurvivalSortKey* scratch,
                             int32_t* sortOrder, SurvivalSortKey* spare = nullptr);

// The same over the state of `slot`: the time column of bindings[0], the
// censoring column of bindings[1] when hasCensoring is set, groupIndex, and
// sortOrder; sortKeys and sortWork are left to the callers as scratch. 1, or
// 0 with status 2 when memory runs short.
int32_t OrderSurvivalRows(int32_t slot);

}  // namespace zv

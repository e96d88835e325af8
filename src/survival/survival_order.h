// The row order of the survival procedures: by group, then time, then
// failures before withdrawals, then row. Shared by the product-limit and the
// Weibull procedures.
#pragma once

#include <cstdint>

namespace zv {

// Fills `sortOrder` with the n row numbers in survival order. Rows whose
// group is kExcludedRow stand behind all groups, ordered the same way among
// themselves (a missing time counts as greater than every time). A row is
// withdrawn when `censor` is given and its value is above 0.
// On return `sortWork` holds the rows in order of time, kind and row alone and
// `sortKeys` the group of each of those as a double (kExcludedRow for none):
// the survival order is that list sorted stably by group.
void OrderSurvivalRowsArrays(int32_t n, const double* time, const double* censor,
                             const int32_t* groupIndex, int32_t* sortWork, double* sortKeys,
                             int32_t* sortOrder);

// The same over the state of `slot`: the time column of bindings[0], the
// censoring column of bindings[1] when hasCensoring is set, groupIndex, and
// the blocks sortWork, sortKeys and sortOrder. 1, or 0 with status 2 when
// memory runs short.
int32_t OrderSurvivalRows(int32_t slot);

}  // namespace zv

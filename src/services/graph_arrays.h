// The work blocks of a plot writer, allocated together or not at all.
#pragma once

#include <cstdint>

#include "zvwin/zvwin.h"

namespace zv {

// Allocates `groups` x 12 bytes (three int32 per element) into *elements,
// `points` x 8 into *xValues and *yValues, `points` x 4 into *rowNumbers
// and, when `kind` is 3, `points` x 8 into *zValues (may be null otherwise;
// it is then not touched). Result 1; on a failure (ShowError 1001 shown by
// AllocGlobal) every block allocated here is freed, the handles are 0, and
// the result is 0.
int32_t AllocGraphArrays(int32_t groups, int32_t points, int32_t kind, Handle* elements,
                         Handle* xValues, Handle* yValues, Handle* rowNumbers, Handle* zValues);

}  // namespace zv

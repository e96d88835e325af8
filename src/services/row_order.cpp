#include "services/row_order.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/host_records.h"
#include "frame/module_state.h"
#include "services/movable_block.h"
#include "services/variables.h"

namespace zv {
namespace {

// Heap sort of an index table, the 1-based routine `indexx` of Numerical
// Recipes in C, first edition (section 8.3), unchanged: on return index(1..n)
// lists 1..n ascending by key. `less(a, b)` compares the keys of rows a and
// b (1-based). Rows of equal key stand in whatever order the heap leaves
// them; reports built without the ties pass depend on that order, so this
// routine must not be replaced by another sort.
template <class Less>
void HeapSortIndex(int32_t n, int32_t* table, Less less) {
  auto index = [table](int32_t j) -> int32_t& { return table[j - 1]; };
  for (int32_t j = 1; j <= n; ++j) index(j) = j;
  if (n < 2) return;
  int32_t l = (n >> 1) + 1;
  int32_t ir = n;
  for (;;) {
    int32_t indxt;
    if (l > 1) {
      indxt = index(--l);
    } else {
      indxt = index(ir);
      index(ir) = index(1);
      if (--ir == 1) {
        index(1) = indxt;
        return;
      }
    }
    int32_t i = l;
    int32_t j = l << 1;
    while (j <= ir) {
      if (j < ir && less(index(j), index(j + 1))) ++j;
      if (less(indxt, index(j))) {
        index(i) = index(j);
        i = j;
        j <<= 1;
      } else {
        j = ir + 1;
      }
    }
    index(i) = indxt;
  }
}

// Brings each run of equal keys into row order. The same result as walking
// every position and swapping in later equal entries of lower row number,
// without the quadratic cost on long runs.
template <class Equal>
void OrderTies(int32_t* order, int32_t n, Equal equal) {
  int32_t start = 0;
  while (start < n) {
    int32_t end = start + 1;
    while (end < n && equal(order[start], order[end])) ++end;
    if (end - start > 1) std::sort(order + start, order + end);
    start = end;
  }
}

// Sorts rows 0..n-1 into gStates[slot]->order by the 1-based comparison
// `less`; `equal` (0-based rows) decides ties.
template <class Less, class Equal>
int32_t BuildOrder(int32_t slot, int32_t n, int32_t ties, Less less, Equal equal) {
  if (slot < 0 || slot >= kSlotCount || gStates[slot] == nullptr || n < 0) return 0;
  ProcedureState& state = *gStates[slot];
  FreeGlobal(&state.order);
  state.orderReady = 0;
  const uint64_t bytes = static_cast<uint64_t>(n) * sizeof(int32_t);
  state.order = AllocGlobal(bytes > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(bytes));
  if (state.order == 0) return 0;
  {
    LockedBlock<int32_t> block(state.order);
    int32_t* order = block.get();
    HeapSortIndex(n, order, less);
    for (int32_t i = 0; i < n; ++i) --order[i];
    if (ties) OrderTies(order, n, equal);
  }
  state.orderReady = 1;
  return 1;
}

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

std::string_view CellView(const char* rows, int32_t width, int32_t row) {
  const char* cell = rows + static_cast<size_t>(row) * static_cast<size_t>(width);
  const void* stop = std::memchr(cell, '\0', static_cast<size_t>(width));
  return {cell, stop ? static_cast<size_t>(static_cast<const char*>(stop) - cell)
                     : static_cast<size_t>(width)};
}

}  // namespace

int32_t SortOrderNumeric(const double* values, int32_t slot, int32_t n, int32_t ties) {
  // During the sort MissingValue counts as one more than the greatest value,
  // so missing rows come last. The key is kept as (missing, value): the same
  // comparisons, and still right when the greatest value is so large that
  // adding 1.0 does not change it.
  auto key = [values](int32_t row) { return values[row] == kMissingValue; };
  auto less = [values, key](int32_t a, int32_t b) {
    const bool ma = key(a - 1), mb = key(b - 1);
    if (ma || mb) return !ma && mb;
    return values[a - 1] < values[b - 1];
  };
  auto equal = [values, key](int32_t a, int32_t b) {
    const bool ma = key(a), mb = key(b);
    return ma == mb && (ma || values[a] == values[b]);
  };
  return BuildOrder(slot, n, ties, less, equal);
}

int32_t SortOrderText(const char* rows, int32_t slot, int32_t n, int32_t width, int32_t ties) {
  if (width < 0) width = 0;
  auto less = [rows, width](int32_t a, int32_t b) {
    return CompareCells(CellView(rows, width, a - 1), CellView(rows, width, b - 1)) < 0;
  };
  auto equal = [rows, width](int32_t a, int32_t b) {
    return CompareCells(CellView(rows, width, a), CellView(rows, width, b)) == 0;
  };
  return BuildOrder(slot, n, ties, less, equal);
}

int32_t CompareCells(std::string_view a, std::string_view b) {
  const bool blankA = IsBlank(a), blankB = IsBlank(b);
  if (blankA || blankB) return blankA == blankB ? 0 : (blankA ? 1 : -1);
  // string_view compares characters as unsigned bytes.
  const int c = a.compare(b);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

std::string TextCell(const char* rows, int32_t width, int32_t row) {
  if (rows == nullptr || width <= 0 || row < 0) return std::string();
  return std::string(CellView(rows, width, row));
}

}  // namespace zv

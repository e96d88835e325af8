#include "services/row_order.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "frame/host_records.h"
#include "frame/module_state.h"
#include "services/movable_block.h"
#include "services/radix_sort.h"
#include "services/variables.h"

namespace zv {
namespace {

// Heap sort of an index table, the 1-based routine `indexx` of Numerical
// Recipes in C, first edition (section 8.3), unchanged but for what an
// entry holds: here an entry may carry its row's key along with the row, so
// that a comparison reads the table instead of reaching into the column.
// The comparisons and moves are the textbook's, so rows of equal key stand
// in the order it leaves them; reports built without the ties pass depend
// on that order, so this routine must not be replaced by another sort.
// On return table[0..n-1] is ascending by `less`.
template <class Item, class Less>
void HeapSortIndex(int32_t n, Item* table, Less less) {
  auto index = [table](int32_t j) -> Item& { return table[j - 1]; };
  if (n < 2) return;
  int32_t l = (n >> 1) + 1;
  int32_t ir = n;
  for (;;) {
    Item indxt;
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

// Replaces the state's order by a fresh block of n int32, or clears it.
ProcedureState* NewOrder(int32_t slot, int32_t n) {
  if (slot < 0 || slot >= kSlotCount || gStates[slot] == nullptr || n < 0) return nullptr;
  ProcedureState& state = *gStates[slot];
  FreeGlobal(&state.order);
  state.orderReady = 0;
  state.order = AllocItems(n, sizeof(int32_t));
  return state.order != 0 ? &state : nullptr;
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

// A row with its sort key.
struct NumericItem {
  double value;
  int32_t missing;
  int32_t row;
};

}  // namespace

int32_t SortOrderNumeric(const double* values, int32_t slot, int32_t n, int32_t ties) {
  ProcedureState* state = NewOrder(slot, n);
  if (state == nullptr) return 0;
  Handle scratch = AllocItems(n, sizeof(NumericItem));
  if (scratch == 0) {
    FreeGlobal(&state->order);
    return 0;
  }
  {
    LockedBlock<NumericItem> items(scratch);
    for (int32_t i = 0; i < n; ++i) {
      items[i] = NumericItem{values[i], values[i] == kMissingValue, i};
    }
    // With the ties pass the order is fixed (by value, missing last, equal
    // values in row order), and a stable radix sort of the rows gives it
    // in linear time; the heap sort stays as the fallback when its second
    // buffer cannot be had.
    std::unique_ptr<NumericItem[]> spare(ties ? new (std::nothrow) NumericItem[n] : nullptr);
    if (spare != nullptr) {
      RadixSortByKey(items.get(), spare.get(), static_cast<size_t>(n), [](const NumericItem& item) {
        return item.missing ? ~uint64_t{0} : OrderedKey(item.value);
      });
    } else {
      // During the sort MissingValue counts as one more than the greatest
      // value, so missing rows come last. The key is kept as (missing,
      // value): the same comparisons, and still right when the greatest
      // value is so large that adding 1.0 does not change it.
      HeapSortIndex(n, items.get(), [](const NumericItem& a, const NumericItem& b) {
        if (a.missing || b.missing) return !a.missing && b.missing;
        return a.value < b.value;
      });
    }
    LockedBlock<int32_t> order(state->order);
    for (int32_t i = 0; i < n; ++i) order[i] = items[i].row;
    if (ties && spare == nullptr) {
      OrderTies(order.get(), n, [values](int32_t a, int32_t b) {
        const bool ma = values[a] == kMissingValue, mb = values[b] == kMissingValue;
        return ma == mb && (ma || values[a] == values[b]);
      });
    }
  }
  FreeGlobal(&scratch);
  state->orderReady = 1;
  return 1;
}

int32_t SortOrderText(const char* rows, int32_t slot, int32_t n, int32_t width, int32_t ties) {
  ProcedureState* state = NewOrder(slot, n);
  if (state == nullptr) return 0;
  if (width < 0) width = 0;
  {
    LockedBlock<int32_t> order(state->order);
    for (int32_t i = 0; i < n; ++i) order[i] = i;
    HeapSortIndex(n, order.get(), [rows, width](int32_t a, int32_t b) {
      return CompareCells(CellView(rows, width, a), CellView(rows, width, b)) < 0;
    });
    if (ties) {
      OrderTies(order.get(), n, [rows, width](int32_t a, int32_t b) {
        return CompareCells(CellView(rows, width, a), CellView(rows, width, b)) == 0;
      });
    }
  }
  state->orderReady = 1;
  return 1;
}

int32_t CompareCells(std::string_view a, std::string_view b) {
  const bool blankA = IsBlank(a), blankB = IsBlank(b);
  if (blankA || blankB) return blankA == blankB ? 0 : (blankA ? 1 : -1);
  // string_view compares characters as unsigned bytes.
  const int c = a.compare(b);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

std::string TextCell(const char* rows, int32_t width, int32_t row) {
  return std::string(TextCellView(rows, width, row));
}

std::string_view TextCellView(const char* rows, int32_t width, int32_t row) {
  if (rows == nullptr || width <= 0 || row < 0) return std::string_view();
  return CellView(rows, width, row);
}

}  // namespace zv

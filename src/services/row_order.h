// Row order: a permutation of the rows of a column, ascending, kept in the
// `order` block of a ProcedureState, and the comparison of text cells.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

// Builds gStates[slot]->order: `n` int32 row numbers from 0, ascending by
// `values` (n doubles), MissingValue rows last. With `ties` set, rows of
// equal value stand in row order; without it they stand as the heap sort
// leaves them, which reports depend on. Sets orderReady. Result 1, or 0
// after ShowError 1001 (and orderReady 0).
int32_t SortOrderNumeric(const double* values, int32_t slot, int32_t n, int32_t ties);

// The same over `n` fixed-width rows of `width` characters (a 'C' column
// block), compared by CompareCells: blank rows last.
int32_t SortOrderText(const char* rows, int32_t slot, int32_t n, int32_t width, int32_t ties);

// Two blank texts are equal, a blank text is greater than any other;
// otherwise byte by byte, case sensitive. -1, 0 or 1.
int32_t CompareCells(std::string_view a, std::string_view b);

// Row `row` of a block of fixed-width rows, up to a terminator if the row
// holds one.
std::string TextCell(const char* rows, int32_t width, int32_t row);
// The same as a view into the block, for passes over every row.
std::string_view TextCellView(const char* rows, int32_t width, int32_t row);

}  // namespace zv

// The data sheet and its expression evaluator, as the module sees them: the
// operations it calls, by role name. Columns are counted from 1 and rows from
// 1, except where an argument is a column index, which counts from 0.
#pragma once

#include <cstdint>

#include "zvwin/zvwin.h"

inline constexpr int32_t kGridNameBytes = 33;  // 32 characters and a terminator
inline constexpr int32_t kGridMaxColumns = 256;
inline constexpr int32_t kGridCellBuffer = 128;  // cell texts and expressions are shorter

// Fills up to 256 records of 33 bytes with the column names, in sheet order;
// returns how many.
int32_t GridListColumns(char* buffer);
int32_t GridRowCount();
char GridColumnType(int32_t columnIndex);  // 'C' for a character column, 'N' numeric
// Appends a column; `one` is always 1.
void GridAddColumn(const char* name, char type, int32_t width, int32_t one);
int32_t GridColumnWidth(int32_t columnIndex);  // characters per cell of a 'C' column
void GridSetColumnType(int32_t column, char type, int32_t width, int32_t one);
int32_t GridQueryFlag(int32_t flag);  // 23: 1 when the sheet wants command 20 first
// Writes the cell into buffer: 8 bytes of double, or the text of a character
// cell, terminated. A row past the column's end gives MissingValue or an
// empty text.
void GridGetCell(int32_t column, int32_t row, void* buffer);
// Writes a cell from its text form; an empty text is a missing value.
void GridPutCell(int32_t column, int32_t row, const char* text);
void GridBeginAccess(int32_t reading);  // 1 reading, 0 writing
void GridEndAccess();
void GridSendCommand(WindowRef window, int32_t message, int32_t command, int32_t zero);

// The open expression. GridOpenExpression parses the text (at most 127
// characters) and evaluates it over the sheet; on a fault it shows a message
// box saying what is wrong and where, and returns 0.
int32_t GridOpenExpression(const char* text);
// which: 0 rows, 1 type ('C' or 'N'), 2 width, 3 index of the column that the
// expression merely names, or -1.
int32_t GridExpressionInfo(int32_t which);
// next = 1: writes the next row's value into buffer (8 bytes of double, or
// `width` characters for a character expression); next = 0: closes.
void GridExpressionStep(int32_t next, void* buffer);

// Formula checks of the expression dialog: GridCheckFormula reports a fault
// in a message box and returns 0; GridTryFormula shows the value of the first
// rows in a message box.
int32_t GridCheckFormula(const char* text);
int32_t GridTryFormula(const char* text);

void GridClearColumn(int32_t column);
void GridSetSelectLength(int32_t rows);
void GridSetColumnLength(int32_t column, int32_t rows, int32_t zero);

// A formula of two values: the literals 1.2345e40 and 1.2345e41 in the text
// stand for the first and second double of the pair passed to
// GridEvaluateFormula. One formula is current at a time.
int32_t GridCompileFormula(const char* text);  // non-zero when it compiled
int32_t GridEvaluateFormula(const double* pair, double* result, int32_t zero, int32_t one);
void GridReleaseFormula();

// The one sheet of the process and the editing steps that the host API and
// the module's operations share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"

namespace zvgrid::detail {

inline constexpr int32_t kMaxNameLength = 32;
inline constexpr int32_t kMaxCellLength = 127;  // a cell text with its terminator fits 128 bytes

struct SheetState {
  std::vector<Column> columns;
  int32_t selectLength = 0;  // length of an expression that names no column; 0: the row count
  int32_t accessLevel = 0;
  std::vector<SentCommand> commands;
  std::vector<std::string> missingCodes = DefaultMissingCodes();
  int32_t servedTextColumn = -1;  // LastTextColumnServed
};

SheetState& Sheet();

int32_t ColumnLength(const Column& column);
// Truncates or pads with missing cells (MissingValue, empty text).
void ResizeColumn(Column* column, int32_t rows);
// Retypes a column, converting its cells through their text form. A text
// that is not a number becomes MissingValue.
void ConvertColumn(Column* column, char type, int32_t width);

// Index of the column whose name equals `name` without regard to case and
// blanks at both ends, or -1.
int32_t FindColumn(std::string_view name);
// `name` trimmed and cut to 32 characters; "Column" when empty; with ".2",
// ".3", ... appended when another column (other than `except`) has it.
std::string UniqueColumnName(std::string_view name, int32_t except);

std::string_view TrimBlanks(std::string_view text);
bool EqualNoCase(std::string_view a, std::string_view b);

}  // namespace zvgrid::detail

// The Host's side of the data sheet: loading, saving and editing the sheet
// that the module's grid operations read and write.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvgrid {

inline constexpr double kMissing = -32768.0;
inline constexpr int32_t kMaxRows = 1 << 20;  // rows beyond are refused or ignored

struct Column {
  std::string name;
  char type = 'N';                 // 'N' numeric, 'C' character
  int32_t width = 1;               // characters per cell of a 'C' column
  std::vector<double> numbers;     // numeric cells; kMissing where empty
  std::vector<std::string> texts;  // character cells
  // The cell that made a column read from a file a character column: its row
  // (from 1; 0 when the column did not come from a file), its text, and
  // whether the file had it in quotes.
  int32_t textRow = 0;
  std::string textCell;
  bool textQuoted = false;
};

// Replaces the current sheet with the CSV text: a header row of names; a
// column whose non-empty cells are all numbers is numeric, else character
// with its longest cell as width; an empty cell and one that is a missing
// code are missing. Returns false and an error text (with line number) for
// malformed input, and for a cell that is a number too large for a double
// or inf or nan in a column that is otherwise numeric.
bool LoadCsvText(std::string_view text, std::string* error);
bool LoadCsvFile(const std::string& path, std::string* error);
std::string SaveCsvText();
bool SaveCsvFile(const std::string& path, std::string* error);

// Cell texts that mean a missing value in CSV files, besides the empty cell:
// an unquoted cell equal to one of them (blanks at both ends aside, case
// sensitive) is missing in a numeric column and an empty text in a character
// column, and a text equal to one is saved in quotes. The default is "NA",
// "NaN" and ".".
void SetMissingCodes(std::vector<std::string> codes);
const std::vector<std::string>& MissingCodes();
std::vector<std::string> DefaultMissingCodes();
// The codes of a comma-separated list ("NA,-99"), blanks at both ends of each
// dropped, empty ones left out.
std::vector<std::string> ParseMissingCodes(std::string_view list);

// The character column that the module was last handed, by GridColumnType or
// as the plain column behind GridOpenExpression: its index from 0, or -1 when
// the last column handed over was numeric or no column.
int32_t LastTextColumnServed();

void ClearSheet();
const std::vector<Column>& Columns();
int32_t RowCount();
// Appends a column, or replaces the cells of the column that has the name
// already. False, and the sheet unchanged, when the sheet has 256 columns,
// a list is longer than kMaxRows, or a text is longer than 127 characters.
// A value that is not finite is stored as kMissing.
bool AddNumericColumn(std::string name, std::vector<double> values);
bool AddTextColumn(std::string name, std::vector<std::string> values);
void DeleteColumn(std::string_view name);

// Evaluates an expression over the sheet; false and a message on a fault.
bool EvaluateExpression(std::string_view text, Column* result, std::string* error);

// GridSendCommand only records its calls, for the Host to act on.
struct SentCommand {
  uint32_t window;
  int32_t message;
  int32_t command;
  int32_t zero;
};
const std::vector<SentCommand>& SentCommands();
void ClearSentCommands();

// GridBeginAccess runs not yet closed by GridEndAccess.
int32_t AccessLevel();

}  // namespace zvgrid

// The operations that the module calls, by role name. Every argument from the
// module is checked: a column or row out of range reads as a missing cell and
// is ignored for writing, so no call can crash the sheet.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

#include "expression.h"
#include "number_text.h"
#include "sheet_store.h"
#include "zvgrid/zvgrid.h"

namespace zvgrid {
namespace {

using detail::Expression;
using detail::ExpressionFault;
using detail::ExpressionMode;

constexpr int32_t kTryRows = 5;

void ShowFault(const ExpressionFault& fault) {
  WinMessageBox(WinGetActiveWindow(), detail::FaultMessage(fault), "Zivara Suite",
                kMbOk | kMbIconExclamation | kMbTaskModal);
}

// The expression as the module passes it: a terminated text, read no further
// than one character past the longest allowed, so that a longer one is still
// refused by length.
std::string_view ExpressionText(const char* text) {
  if (text == nullptr) return {};
  return std::string_view(text, strnlen(text, detail::kMaxExpressionLength + 1));
}

bool CompileShown(const char* text, ExpressionMode mode, Expression* expression) {
  ExpressionFault fault;
  if (detail::CompileExpression(ExpressionText(text), mode, expression, &fault)) return true;
  ShowFault(fault);
  return false;
}

// The open expression, evaluated over the sheet when it was opened.
struct OpenExpression {
  bool text = false;
  int32_t width = 1;
  int32_t namedColumn = -1;
  std::vector<double> numbers;
  std::vector<std::string> texts;
  size_t next = 0;
  int32_t rows() const { return static_cast<int32_t>(text ? texts.size() : numbers.size()); }
};

std::optional<OpenExpression>& Open() {
  static std::optional<OpenExpression> open;
  return open;
}

std::optional<Expression>& Formula() {
  static std::optional<Expression> formula;
  return formula;
}

void EvaluateAll(const Expression& expression, OpenExpression* out) {
  out->text = expression.text;
  out->width = expression.width;
  out->namedColumn = expression.namedColumn;
  for (int32_t row = 0; row < expression.rows; ++row) {
    if (expression.text) {
      out->texts.emplace_back(detail::EvaluateText(expression, row));
    } else {
      out->numbers.push_back(detail::EvaluateNumber(expression, row, nullptr));
    }
  }
}

Column* ColumnAt(int32_t column) {
  std::vector<Column>& columns = detail::Sheet().columns;
  if (column < 1 || column > static_cast<int32_t>(columns.size())) return nullptr;
  return &columns[static_cast<size_t>(column) - 1];
}

std::string TryValue(const OpenExpression& open, size_t row) {
  if (open.text) return "\"" + open.texts[row] + "\"";
  if (open.numbers[row] == kMissing) return "missing";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.10g", open.numbers[row]);
  return buffer;
}

}  // namespace

bool EvaluateExpression(std::string_view text, Column* result, std::string* error) {
  Expression expression;
  ExpressionFault fault;
  if (!detail::CompileExpression(text, ExpressionMode::kSheet, &expression, &fault)) {
    if (error) *error = detail::FaultMessage(fault);
    return false;
  }
  OpenExpression values;
  EvaluateAll(expression, &values);
  *result = Column();
  result->name = std::string(detail::TrimBlanks(text).substr(0, detail::kMaxNameLength));
  result->type = values.text ? 'C' : 'N';
  result->width = values.width;
  result->numbers = std::move(values.numbers);
  result->texts = std::move(values.texts);
  return true;
}

}  // namespace zvgrid

using zvgrid::detail::Sheet;

int32_t GridListColumns(char* buffer) {
  const std::vector<zvgrid::Column>& columns = Sheet().columns;
  if (buffer == nullptr) return 0;
  const auto count = static_cast<int32_t>(std::min<size_t>(columns.size(), kGridMaxColumns));
  for (int32_t i = 0; i < count; ++i) {
    char* record = buffer + static_cast<size_t>(i) * kGridNameBytes;
    std::memset(record, 0, kGridNameBytes);
    const std::string& name = columns[static_cast<size_t>(i)].name;
    std::memcpy(record, name.data(), std::min<size_t>(name.size(), kGridNameBytes - 1));
  }
  return count;
}

int32_t GridRowCount() {
  return zvgrid::RowCount();
}

char GridColumnType(int32_t columnIndex) {
  const zvgrid::Column* column = zvgrid::ColumnAt(columnIndex + 1);
  const char type = column != nullptr ? column->type : 'N';
  Sheet().servedTextColumn = type == 'C' ? columnIndex : -1;
  return type;
}

void GridAddColumn(const char* name, char type, int32_t width, int32_t one) {
  (void)one;
  std::vector<zvgrid::Column>& columns = Sheet().columns;
  if (static_cast<int32_t>(columns.size()) >= kGridMaxColumns) return;
  zvgrid::Column column;
  // The module leaves room for 35 characters; a longer name is cut to 32.
  column.name = zvgrid::detail::UniqueColumnName(
      name != nullptr ? std::string_view(name, strnlen(name, kGridCellBuffer)) : "", -1);
  zvgrid::detail::ConvertColumn(&column, type, width);
  columns.push_back(std::move(column));
}

int32_t GridColumnWidth(int32_t columnIndex) {
  const zvgrid::Column* column = zvgrid::ColumnAt(columnIndex + 1);
  return column != nullptr ? column->width : 0;
}

void GridSetColumnType(int32_t column, char type, int32_t width, int32_t one) {
  (void)one;
  if (zvgrid::Column* target = zvgrid::ColumnAt(column)) {
    zvgrid::detail::ConvertColumn(target, type, width);
  }
}

int32_t GridQueryFlag(int32_t flag) {
  (void)flag;  // the sheet never asks for command 20 first
  return 0;
}

void GridGetCell(int32_t column, int32_t row, void* buffer) {
  if (buffer == nullptr) return;
  const zvgrid::Column* source = zvgrid::ColumnAt(column);
  // MissingValue's first byte in memory is 0, so the same 8 bytes also read
  // as an empty text when the column is unknown.
  if (source == nullptr || source->type != 'C') {
    double value = zvgrid::kMissing;
    if (source != nullptr && row >= 1 && row <= static_cast<int32_t>(source->numbers.size())) {
      value = source->numbers[static_cast<size_t>(row) - 1];
    }
    std::memcpy(buffer, &value, sizeof value);
    return;
  }
  auto* out = static_cast<char*>(buffer);
  if (row < 1 || row > static_cast<int32_t>(source->texts.size())) {
    out[0] = '\0';
    return;
  }
  const std::string& text = source->texts[static_cast<size_t>(row) - 1];
  const size_t length = std::min<size_t>(text.size(), zvgrid::detail::kMaxCellLength);
  std::memcpy(out, text.data(), length);
  out[length] = '\0';
}

void GridPutCell(int32_t column, int32_t row, const char* text) {
  zvgrid::Column* target = zvgrid::ColumnAt(column);
  if (target == nullptr || row < 1 || row > zvgrid::kMaxRows) return;
  std::string_view value =
      text != nullptr ? std::string_view(text, strnlen(text, kGridCellBuffer - 1)) : "";
  if (row > zvgrid::detail::ColumnLength(*target)) zvgrid::detail::ResizeColumn(target, row);
  const auto at = static_cast<size_t>(row) - 1;
  if (target->type == 'C') {
    // A fixed-width cell's padding is not part of its text.
    value = value.substr(0, value.find_last_not_of(' ') + 1);
    target->texts[at].assign(value);
    target->width = std::max(target->width, static_cast<int32_t>(value.size()));
  } else {
    double number = zvgrid::kMissing;
    if (!zvgrid::detail::ParseNumberText(value, true, &number)) number = zvgrid::kMissing;
    target->numbers[at] = number;
  }
}

void GridBeginAccess(int32_t reading) {
  (void)reading;
  ++Sheet().accessLevel;
}

void GridEndAccess() {
  if (Sheet().accessLevel > 0) --Sheet().accessLevel;
}

void GridSendCommand(WindowRef window, int32_t message, int32_t command, int32_t zero) {
  Sheet().commands.push_back({window, message, command, zero});
}

int32_t GridOpenExpression(const char* text) {
  zvgrid::Open().reset();
  zvgrid::detail::Expression expression;
  if (!zvgrid::CompileShown(text, zvgrid::detail::ExpressionMode::kSheet, &expression)) return 0;
  zvgrid::OpenExpression open;
  zvgrid::EvaluateAll(expression, &open);
  Sheet().servedTextColumn = open.text ? open.namedColumn : -1;
  zvgrid::Open() = std::move(open);
  return 1;
}

int32_t GridExpressionInfo(int32_t which) {
  const auto& open = zvgrid::Open();
  switch (which) {
    case 0:
      return open ? open->rows() : 0;
    case 1:
      return open && open->text ? 'C' : 'N';
    case 2:
      return open ? open->width : 1;
    case 3:
      return open ? open->namedColumn : -1;
    default:
      return 0;
  }
}

void GridExpressionStep(int32_t next, void* buffer) {
  auto& open = zvgrid::Open();
  if (next == 0) {
    open.reset();
    return;
  }
  if (!open || buffer == nullptr) return;
  const size_t row = open->next++;
  if (open->text) {
    // `width` characters, blank padded, no terminator.
    auto* out = static_cast<char*>(buffer);
    const std::string_view text =
        row < open->texts.size() ? std::string_view(open->texts[row]) : std::string_view();
    const auto width = static_cast<size_t>(open->width);
    const size_t length = std::min(text.size(), width);
    if (length > 0) std::memcpy(out, text.data(), length);
    std::memset(out + length, ' ', width - length);
  } else {
    const double value = row < open->numbers.size() ? open->numbers[row] : zvgrid::kMissing;
    std::memcpy(buffer, &value, sizeof value);
  }
}

int32_t GridCheckFormula(const char* text) {
  zvgrid::detail::Expression expression;
  return zvgrid::CompileShown(text, zvgrid::detail::ExpressionMode::kSheet, &expression) ? 1 : 0;
}

int32_t GridTryFormula(const char* text) {
  zvgrid::detail::Expression expression;
  if (!zvgrid::CompileShown(text, zvgrid::detail::ExpressionMode::kSheet, &expression)) return 0;
  expression.rows = std::min(expression.rows, zvgrid::kTryRows);
  zvgrid::OpenExpression values;
  zvgrid::EvaluateAll(expression, &values);
  std::string message;
  if (values.rows() == 0) {
    message = "The expression gives no rows.";
  } else {
    message = "The expression gives on its first rows:";
    for (int32_t row = 0; row < values.rows(); ++row) {
      message += "\nRow " + std::to_string(row + 1) + ": " +
                 zvgrid::TryValue(values, static_cast<size_t>(row));
    }
  }
  WinMessageBox(WinGetActiveWindow(), message, "Zivara Suite",
                kMbOk | kMbIconInformation | kMbTaskModal);
  return 1;
}

void GridClearColumn(int32_t column) {
  if (zvgrid::Column* target = zvgrid::ColumnAt(column)) zvgrid::detail::ResizeColumn(target, 0);
}

void GridSetSelectLength(int32_t rows) {
  Sheet().selectLength = std::clamp(rows, 0, zvgrid::kMaxRows);
}

void GridSetColumnLength(int32_t column, int32_t rows, int32_t zero) {
  (void)zero;
  if (zvgrid::Column* target = zvgrid::ColumnAt(column)) {
    zvgrid::detail::ResizeColumn(target, rows);
  }
}

int32_t GridCompileFormula(const char* text) {
  // Silent: the caller turns a formula that does not compile into a status.
  zvgrid::Formula().reset();
  zvgrid::detail::Expression expression;
  zvgrid::detail::ExpressionFault fault;
  if (!zvgrid::detail::CompileExpression(zvgrid::ExpressionText(text),
                                         zvgrid::detail::ExpressionMode::kPair, &expression,
                                         &fault)) {
    return 0;
  }
  zvgrid::Formula() = std::move(expression);
  return 1;
}

int32_t GridEvaluateFormula(const double* pair, double* result, int32_t zero, int32_t one) {
  (void)zero;
  (void)one;
  const auto& formula = zvgrid::Formula();
  if (!formula || pair == nullptr || result == nullptr) return 0;
  *result = zvgrid::detail::EvaluateNumber(*formula, 0, pair);
  return 1;
}

void GridReleaseFormula() {
  zvgrid::Formula().reset();
}

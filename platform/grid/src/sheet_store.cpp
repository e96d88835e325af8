#include "sheet_store.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "number_text.h"

namespace zvgrid {
namespace detail {

SheetState& Sheet() {
  static SheetState sheet;
  return sheet;
}

int32_t ColumnLength(const Column& column) {
  return static_cast<int32_t>(column.type == 'C' ? column.texts.size() : column.numbers.size());
}

void ResizeColumn(Column* column, int32_t rows) {
  rows = std::clamp(rows, 0, kMaxRows);
  if (column->type == 'C') {
    column->texts.resize(static_cast<size_t>(rows));
  } else {
    column->numbers.resize(static_cast<size_t>(rows), kMissing);
  }
}

void ConvertColumn(Column* column, char type, int32_t width) {
  type = type == 'C' ? 'C' : 'N';
  if (type == 'C') {
    if (column->type != 'C') {
      column->texts.clear();
      for (double value : column->numbers) {
        column->texts.push_back(value == kMissing ? std::string() : FormatNumberText(value));
      }
      column->numbers.clear();
    }
    // Never narrower than a cell it holds, so that no text is cut.
    for (const std::string& text : column->texts) {
      width = std::max(width, static_cast<int32_t>(text.size()));
    }
    column->width = std::clamp(width, 1, kMaxCellLength);
  } else {
    if (column->type == 'C') {
      column->numbers.clear();
      for (const std::string& text : column->texts) {
        double value = kMissing;
        if (!ParseNumberText(text, true, &value)) value = kMissing;
        column->numbers.push_back(value);
      }
      column->texts.clear();
    }
    column->width = std::max(width, 1);
  }
  column->type = type;
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto x = static_cast<unsigned char>(a[i]);
    const auto y = static_cast<unsigned char>(b[i]);
    if (x != y && std::tolower(x) != std::tolower(y)) return false;
  }
  return true;
}

int32_t FindColumn(std::string_view name) {
  name = TrimBlanks(name);
  const std::vector<Column>& columns = Sheet().columns;
  for (size_t i = 0; i < columns.size(); ++i) {
    if (EqualNoCase(TrimBlanks(columns[i].name), name)) return static_cast<int32_t>(i);
  }
  return -1;
}

std::string UniqueColumnName(std::string_view name, int32_t except) {
  name = name.substr(0, name.find('\0'));
  std::string base(TrimBlanks(TrimBlanks(name).substr(0, kMaxNameLength)));
  if (base.empty()) base = "Column";
  const auto taken = [except](std::string_view candidate) {
    const int32_t found = FindColumn(candidate);
    return found >= 0 && found != except;
  };
  if (!taken(base)) return base;
  for (int32_t n = 2;; ++n) {
    const std::string suffix = std::string(1, '.').append(std::to_string(n));
    const std::string candidate =
        base.substr(0, static_cast<size_t>(kMaxNameLength) - suffix.size()) + suffix;
    if (!taken(candidate)) return candidate;
  }
}

namespace {

bool AddColumn(Column column) {
  if (ColumnLength(column) > kMaxRows) return false;
  const int32_t existing = FindColumn(column.name);
  std::vector<Column>& columns = Sheet().columns;
  if (existing < 0 && static_cast<int32_t>(columns.size()) >= kGridMaxColumns) return false;
  column.name = UniqueColumnName(column.name, existing);
  if (existing >= 0) {
    columns[static_cast<size_t>(existing)] = std::move(column);
  } else {
    columns.push_back(std::move(column));
  }
  return true;
}

}  // namespace
}  // namespace detail

void ClearSheet() {
  detail::SheetState& sheet = detail::Sheet();
  sheet.columns.clear();
  sheet.selectLength = 0;
  sheet.servedTextColumn = -1;
}

void SetMissingCodes(std::vector<std::string> codes) {
  detail::Sheet().missingCodes = std::move(codes);
}

const std::vector<std::string>& MissingCodes() {
  return detail::Sheet().missingCodes;
}

std::vector<std::string> DefaultMissingCodes() {
  return {"NA", "NaN", "."};
}

std::vector<std::string> ParseMissingCodes(std::string_view list) {
  std::vector<std::string> codes;
  size_t at = 0;
  while (at <= list.size()) {
    const size_t comma = std::min(list.find(',', at), list.size());
    const std::string_view code = detail::TrimBlanks(list.substr(at, comma - at));
    if (!code.empty()) codes.emplace_back(code);
    at = comma + 1;
  }
  return codes;
}

int32_t LastTextColumnServed() {
  return detail::Sheet().servedTextColumn;
}

const std::vector<Column>& Columns() {
  return detail::Sheet().columns;
}

int32_t RowCount() {
  int32_t rows = 0;
  for (const Column& column : detail::Sheet().columns) {
    rows = std::max(rows, detail::ColumnLength(column));
  }
  return rows;
}

bool AddNumericColumn(std::string name, std::vector<double> values) {
  Column column;
  column.name = std::move(name);
  column.type = 'N';
  column.width = 1;
  for (double& value : values) {
    if (!std::isfinite(value)) value = kMissing;
  }
  column.numbers = std::move(values);
  return detail::AddColumn(std::move(column));
}

bool AddTextColumn(std::string name, std::vector<std::string> values) {
  Column column;
  column.name = std::move(name);
  column.type = 'C';
  column.width = 1;
  for (const std::string& text : values) {
    if (text.size() > static_cast<size_t>(detail::kMaxCellLength)) return false;
    if (text.find('\0') != std::string::npos) return false;
    column.width = std::max(column.width, static_cast<int32_t>(text.size()));
  }
  column.texts = std::move(values);
  return detail::AddColumn(std::move(column));
}

void DeleteColumn(std::string_view name) {
  const int32_t index = detail::FindColumn(name);
  if (index >= 0) {
    std::vector<Column>& columns = detail::Sheet().columns;
    columns.erase(columns.begin() + index);
  }
}

const std::vector<SentCommand>& SentCommands() {
  return detail::Sheet().commands;
}
void ClearSentCommands() {
  detail::Sheet().commands.clear();
}
int32_t AccessLevel() {
  return detail::Sheet().accessLevel;
}

}  // namespace zvgrid
